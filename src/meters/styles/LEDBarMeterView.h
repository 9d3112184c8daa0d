#pragma once
// One channel's horizontal LED level meter: 28 segments left to right, green, amber and red by
// position, the channel letter at the left and a VU-style scale below. No peak hold.
#include <QString>

#include "meters/kit/StaticLayer.h"
#include "meters/styles/ChannelMeter.h"

namespace corvanel::meters {

class LEDBarMeterView final : public ChannelMeter {
  public:
    static constexpr int segmentCount = 28;
    static constexpr double segmentGap = 2.0;
    static constexpr double letterMargin = 14.0;
    static constexpr double scaleBand = 11.0;
    static constexpr double canvasInset = 10.0;

    explicit LEDBarMeterView(QString channel);

    void setLevel(float level) override;
    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;

    QString channel_;
    float level_ = 0.0f;
    StaticLayer background_{8.0};
    StaticLayer lit_;
    StaticLayer glass_;
};

}  // namespace corvanel::meters
