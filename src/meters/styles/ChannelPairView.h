#pragma once
// Two channel meters in a row, left channel first, sharing the width equally with a fixed space
// between them; each takes the full height.
#include <memory>

#include "meters/kit/MeterRenderer.h"
#include "meters/styles/ChannelMeter.h"

namespace corvanel::meters {

class ChannelPairView final : public MeterRenderer {
  public:
    ChannelPairView(std::unique_ptr<ChannelMeter> left, std::unique_ptr<ChannelMeter> right,
                    double spacing);

    void setValues(const MeterValues& values) override;
    bool step(double dt) override;
    void settle() override;
    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    std::unique_ptr<ChannelMeter> left_;
    std::unique_ptr<ChannelMeter> right_;
    double spacing_;
};

}  // namespace corvanel::meters
