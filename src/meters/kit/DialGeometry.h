#pragma once
// Angles as the meters give them: degrees from the +x axis, positive turning towards +y
// (clockwise on screen, since y grows downwards).
#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace corvanel::meters {

inline QPointF polarPoint(QPointF centre, double radius, double degrees) {
    const double radians = degrees * std::numbers::pi / 180.0;
    return centre + QPointF(std::cos(radians), std::sin(radians)) * radius;
}

// The arc from `fromDegrees` to `toDegrees` (increasing angles, the short way).
inline QPainterPath arcPath(QPointF centre, double radius, double fromDegrees, double toDegrees) {
    const QRectF box(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
    QPainterPath path;
    path.arcMoveTo(box, -fromDegrees);
    path.arcTo(box, -fromDegrees, -(toDegrees - fromDegrees));
    return path;
}

// A dial laid out from its box's height also reaches sideways in proportion to it: its outermost
// labels stand `reachPerHeight` x height from the centre line and need `fixedReach` points more.
// In an area too tall for its width the dial keeps its proportions at the greatest height the
// width allows, resting on the area's bottom edge (the pivot's side); the face above stays plain.
inline QRectF fittedDialBox(const QRectF& area, double reachPerHeight, double fixedReach) {
    const double tallest = std::max(0.0, (area.width() / 2 - fixedReach) / reachPerHeight);
    if (area.height() <= tallest) return area;
    return {area.left(), area.bottom() - tallest, area.width(), tallest};
}

}  // namespace corvanel::meters
