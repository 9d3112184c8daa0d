#pragma once
// The legend of the magma and lightning meters: a row 12 points in from the sides and 9 points
// down from the top, with the channel name on the left (10-point bold serif) and "VU" on the
// right (11-point bold serif).
#include <QColor>
#include <QPainter>
#include <QSizeF>
#include <QString>

namespace corvanel::meters {

void drawThemedLegend(QPainter& painter, const QSizeF& size, const QString& channel,
                      const QColor& colour);

}  // namespace corvanel::meters
