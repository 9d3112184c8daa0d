#pragma once
// Where the room picture's features lie, as fractions of the drawn picture (x from the left edge,
// y from the top). The painted room and the animated scene both read these, so that flames stand
// on the painted wicks and snow falls behind the painted glass.
#include <QPointF>
#include <QRectF>
#include <array>

namespace corvanel::meters {

// The 49 candle wicks, ordered by increasing y (far candles first, near candles last).
const std::array<QPointF, 49>& candleWicks();

// The window's eight panes, two columns by four rows, row by row from the top.
const std::array<QRectF, 8>& windowPanes();

// The bounding box of the panes: the area the snow falls through.
QRectF snowBox();

}  // namespace corvanel::meters
