#pragma once
// One channel of the Futuristic rack: a 240-degree neon gauge open at the bottom, whose glowing
// arc sweeps from cyan to pink with the level (moving on a spring), with the channel name and a
// numeric VU reading in its centre.
#include <QGradientStops>
#include <QString>

#include "meters/ChannelMeter.h"
#include "meters/Spring.h"
#include "meters/StaticLayer.h"

namespace corvanel::meters {

class HoloVUMeterView final : public ChannelMeter {
  public:
    static constexpr double aspectRatio = 1.55;

    explicit HoloVUMeterView(QString channel);

    void setLevel(float level) override;
    bool step(double dt) override;
    void settle() override;
    void paint(QPainter& painter, const QSizeF& size) override;

    // The gauge's colour ramp: cyan, blue, violet, pink.
    static const QGradientStops& neonGradient();
    // The reading shown in the gauge: the level in VU with a sign and one decimal ("-7.5").
    static QString vuReadout(float level);

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;

    QString channel_;
    float level_ = 0.0f;
    Spring arc_{0.3, 0.55};
    StaticLayer background_{6.0};
};

}  // namespace corvanel::meters
