#pragma once
// The "LED Rack" style: left and right LED bar meters in a row above the LED spectrum analyzer,
// the two rows sharing the height equally after 12 points between them.
#include "meters/kit/MeterRenderer.h"
#include "meters/styles/ChannelPairView.h"
#include "meters/styles/LEDSpectrumView.h"

namespace corvanel::meters {

class LEDRackComboView final : public MeterRenderer {
  public:
    LEDRackComboView();

    void setValues(const MeterValues& values) override;
    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    ChannelPairView bars_;
    LEDSpectrumView spectrum_;
};

}  // namespace corvanel::meters
