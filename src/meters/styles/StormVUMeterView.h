#pragma once
// One channel of the Valhalla style: a horizontal lightning bolt that shoots from the left as far
// as the level reaches, forking as it grows (one fork from 0.2, four from 0.8) and flaring at
// its tip above 0.9, over a 0-100 scale. Stateless: the bolt changes shape only when the level
// crosses a 1/30 step.
#include <QPolygonF>
#include <QString>

#include "meters/kit/StaticLayer.h"
#include "meters/styles/ChannelMeter.h"

namespace corvanel::meters {

class StormVUMeterView final : public ChannelMeter {
  public:
    static constexpr double aspectRatio = 1.5;

    explicit StormVUMeterView(QString channel);

    void setLevel(float level) override;
    void paint(QPainter& painter, const QSizeF& size) override;

    // The bolt's 17 points on a canvas of `size` for a clamped level above 0.02.
    QPolygonF bolt(const QSizeF& canvas) const;
    // The number of forks a level draws.
    static int forkCount(double level);

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;
    void paintBolt(QPainter& painter, const QSizeF& canvas) const;
    std::int64_t key() const;

    QString channel_;
    double level_ = 0.0;
    StaticLayer background_;
};

}  // namespace corvanel::meters
