#include "meters/styles/WaveformSymbol.h"

#include <array>

#include "meters/kit/ContinuousRect.h"

namespace corvanel::meters::WaveformSymbol {

namespace {
// Relative stroke heights, left to right: a burst that swells and fades.
constexpr std::array<double, 7> strokes{0.30, 0.62, 1.0, 0.48, 0.82, 0.42, 0.22};
constexpr double strokeWidth = 1.7;
}  // namespace

void paint(QPainter& painter, QPointF origin, const QColor& colour) {
    const double pitch = (width - strokeWidth) / static_cast<double>(strokes.size() - 1);
    const double middle = origin.y() + height / 2.0;
    for (std::size_t i = 0; i < strokes.size(); ++i) {
        const double h = std::max(strokeWidth, strokes[i] * height);
        const double x = origin.x() + pitch * static_cast<double>(i);
        painter.fillPath(capsule(QRectF(x, middle - h / 2.0, strokeWidth, h)), colour);
    }
}

}  // namespace corvanel::meters::WaveformSymbol
