#pragma once
// One channel of the Futuristic rack: a 240-degree neon gauge open at the bottom, whose glowing
// arc sweeps from cyan to pink with the level (moving on a spring), with the channel name and a
// numeric VU reading in its centre.
#include <QGradientStops>
#include <QString>

#include "meters/kit/StaticLayer.h"
#include "meters/styles/SpringNeedleMeter.h"

namespace corvanel::meters {

class HoloVUMeterView final : public SpringNeedleMeter {
  public:
    static constexpr double aspectRatio = 1.55;

    explicit HoloVUMeterView(QString channel);

    // Keeps the level itself for the reading, which shows it without the arc's spring.
    void setLevel(float level) override;
    void paint(QPainter& painter, const QSizeF& size) override;

    // The gauge's colour ramp: cyan, blue, violet, pink.
    static const QGradientStops& neonGradient();
    // The reading shown in the gauge: the level in VU with a sign and one decimal ("-7.5").
    static QString vuReadout(float level);

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;

    QString channel_;
    float level_ = 0.0f;
    StaticLayer background_{6.0};
};

}  // namespace corvanel::meters
