#include "meters/kit/ContinuousRect.h"

#include <QPen>
#include <algorithm>

namespace corvanel::meters {

namespace {

// Each corner starts this many radii before the geometric corner and is made of two cubic
// pieces meeting on the diagonal. The first piece keeps its first three control points on the
// edge line, so the curvature is zero where it leaves the edge; the two pieces mirror each other
// across the diagonal, so the curvature is continuous there too.
constexpr double cornerExtent = 1.528;
constexpr double diagonalInset = 0.29;  // where the curve crosses the diagonal, in radii

struct CornerFrame {
    QPointF corner;  // the geometric corner
    QPointF along;   // unit vector along the incoming edge, towards the corner
    QPointF out;     // unit vector along the outgoing edge, away from the corner
};

void addCorner(QPainterPath& path, const CornerFrame& f, double extent, double inset,
               bool moveFirst) {
    const auto at = [&](double alongDistance, double outDistance) {
        return f.corner + f.along * alongDistance + f.out * outDistance;
    };
    const QPointF start = at(-extent, 0);
    const QPointF middle = at(-inset, inset);
    const double handle = std::max(0.0, (extent - 2.0 * inset) * 0.5);
    if (moveFirst)
        path.moveTo(start);
    else
        path.lineTo(start);
    path.cubicTo(at(-extent + handle, 0), at(-2.0 * inset, 0), middle);
    path.cubicTo(at(0, 2.0 * inset), at(0, extent - handle), at(0, extent));
}

}  // namespace

QPainterPath continuousRoundedRect(const QRectF& rect, double cornerRadius) {
    QPainterPath path;
    const QRectF r = rect.normalized();
    const double half = std::min(r.width(), r.height()) / 2.0;
    const double radius = std::clamp(cornerRadius, 0.0, half);
    if (radius <= 0.0) {
        path.addRect(r);
        return path;
    }
    const double extent = std::min(radius * cornerExtent, half);
    const double inset = radius * diagonalInset;
    addCorner(path, {r.topRight(), {1, 0}, {0, 1}}, extent, inset, true);
    addCorner(path, {r.bottomRight(), {0, 1}, {-1, 0}}, extent, inset, false);
    addCorner(path, {r.bottomLeft(), {-1, 0}, {0, -1}}, extent, inset, false);
    addCorner(path, {r.topLeft(), {0, -1}, {1, 0}}, extent, inset, false);
    path.closeSubpath();
    return path;
}

QPainterPath capsule(const QRectF& rect) {
    QPainterPath path;
    const double radius = std::min(rect.width(), rect.height()) / 2.0;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

void strokeInside(QPainter& painter, const QRectF& rect, double cornerRadius, const QColor& colour,
                  double lineWidth) {
    const double half = lineWidth / 2.0;
    const QRectF inner = rect.adjusted(half, half, -half, -half);
    painter.save();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, lineWidth));
    painter.drawPath(continuousRoundedRect(inner, std::max(0.0, cornerRadius - half)));
    painter.restore();
}

}  // namespace corvanel::meters
