#pragma once
// A channel meter whose needle follows the level through a spring: retargeted from where it is on
// every new level, stepped by the frame clock, put at rest for a still frame.
#include "meters/kit/Spring.h"
#include "meters/styles/ChannelMeter.h"

namespace corvanel::meters {

class SpringNeedleMeter : public ChannelMeter {
  public:
    void setLevel(float level) override;
    bool step(double dt) override;
    void settle() override;

  protected:
    explicit SpringNeedleMeter(double response = 0.32, double dampingFraction = 0.4)
        : needleLevel_(response, dampingFraction) {}

    Spring needleLevel_;
};

}  // namespace corvanel::meters
