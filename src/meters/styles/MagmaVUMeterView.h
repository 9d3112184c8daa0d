#pragma once
// One channel of the Inferno style: a jagged rock channel that fills with glowing lava up to the
// level, with a wobbling crust, sparks above 0.35 and a hot spot above 0.9, beside a 0-100 scale.
// Stateless: the crust and sparks change shape only when the level crosses a 1/30 step.
#include <QPolygonF>
#include <QString>

#include "meters/kit/StaticLayer.h"
#include "meters/styles/ChannelMeter.h"

namespace corvanel::meters {

class MagmaVUMeterView final : public ChannelMeter {
  public:
    static constexpr double aspectRatio = 1.5;

    explicit MagmaVUMeterView(QString channel);

    void setLevel(float level) override;
    void paint(QPainter& painter, const QSizeF& size) override;

    // The canvas's channel outline for a canvas of `size` (it never changes).
    static QPolygonF channelOutline(const QSizeF& size);

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;
    void paintLava(QPainter& painter, const QSizeF& canvas) const;

    QString channel_;
    double level_ = 0.0;
    StaticLayer background_;
};

}  // namespace corvanel::meters
