#pragma once
// Rounded rectangles with continuous ("squircle") corners: the curvature grows smoothly from the
// straight edge into the corner instead of jumping to a circular arc.
#include <QPainter>
#include <QPainterPath>
#include <QRectF>

namespace corvanel::meters {

QPainterPath continuousRoundedRect(const QRectF& rect, double cornerRadius);

// A fully rounded bar (both short ends are half circles).
QPainterPath capsule(const QRectF& rect);

// Strokes the outline of a continuous rounded rectangle so that the whole line lies inside
// `rect` (a border drawn inside the edge).
void strokeInside(QPainter& painter, const QRectF& rect, double cornerRadius, const QColor& colour,
                  double lineWidth);

}  // namespace corvanel::meters
