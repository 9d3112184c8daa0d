#pragma once
// The themed styles' arrangement: a row of two channel meters (left channel first, 14 points
// apart) above a spectrum view that takes the rest of the height, 12 points below the row.
// Meters with an aspect ratio keep it: the row is as tall as the meters' width allows, but never
// more than half the height, and the pair stays centred. Meters without one share the height
// equally with the spectrum.
#include <QRectF>
#include <QSizeF>
#include <memory>
#include <optional>

#include "meters/kit/MeterRenderer.h"
#include "meters/styles/ChannelMeter.h"

namespace corvanel::meters {

class ComboView : public MeterRenderer {
  public:
    struct Layout {
        QRectF left;
        QRectF right;
        QRectF spectrum;
    };
    static constexpr double meterSpacing = 14.0;
    static constexpr double rowSpacing = 12.0;

    static Layout layout(const QSizeF& size, std::optional<double> meterAspect);

    void setValues(const MeterValues& values) override;
    bool step(double dt) override;
    void settle() override;
    void paint(QPainter& painter, const QSizeF& size) override;

  protected:
    ComboView(std::unique_ptr<ChannelMeter> left, std::unique_ptr<ChannelMeter> right,
              std::unique_ptr<MeterRenderer> spectrum, std::optional<double> meterAspect);

  private:
    std::unique_ptr<ChannelMeter> left_;
    std::unique_ptr<ChannelMeter> right_;
    std::unique_ptr<MeterRenderer> spectrum_;
    std::optional<double> meterAspect_;
};

}  // namespace corvanel::meters
