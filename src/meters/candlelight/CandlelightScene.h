#pragma once
// One frame of the candle-light visualizer: the room picture scaled to cover the canvas, snow
// falling behind the window panes, a warm room glow that follows the overall loudness, one
// flickering flame per wick driven by its spectrum band, and a vignette. The frame is a function
// of the levels and the time alone (all randomness comes from noise()), so the same inputs
// always paint the same picture.
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QSizeF>
#include <vector>

#include "meters/candlelight/CandlelightLayers.h"
#include "meters/candlelight/FlameAnchor.h"

namespace corvanel::meters {

class CandlelightScene {
  public:
    // `time` is in seconds since 2001-01-01 00:00:00 UTC.
    CandlelightScene(std::vector<float> levels, double time);

    // The 49 flames, built once for the analyzer's band count.
    static const std::vector<FlameAnchor>& anchors();

    // Paints the frame over a canvas of `size` points. A null or empty `room` paints nothing.
    void paint(QPainter& painter, const QSizeF& size, const QImage& room,
               CandlelightLayers& layers) const;

    // One flame's additive light: its outer and inner halo, and its reflection on the floor for
    // the low candles; given where the picture is drawn.
    void drawGlow(const FlameAnchor& anchor, QPainter& painter, QPointF origin, QSizeF size) const;
    // One flame's body: outer flame, white core and blue root.
    void drawFlame(const FlameAnchor& anchor, QPainter& painter, QPointF origin, QSizeF size) const;

    // The snow behind the window panes of the picture drawn at origin and size.
    void drawSnow(QPainter& painter, QPointF origin, QSizeF size) const;

    // The mean of the clamped levels, 0 without levels.
    float loudness() const;

  private:
    struct FlameShape;
    FlameShape shapeOf(const FlameAnchor& anchor, QPointF origin, QSizeF size) const;
    void drawLight(QPainter& painter, const QSizeF& size, QPointF origin, QSizeF drawn,
                   CandlelightLayers& layers) const;

    std::vector<float> levels_;
    double time_;
};

}  // namespace corvanel::meters
