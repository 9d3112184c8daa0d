#pragma once
// Angles as the meters give them: degrees from the +x axis, positive turning towards +y
// (clockwise on screen, since y grows downwards).
#include <QPainterPath>
#include <QPointF>
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

}  // namespace corvanel::meters
