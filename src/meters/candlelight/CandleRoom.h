#pragma once
// The visualizer's room picture, "CandleRoom": a dim, warm room at night with a candle under
// every wick of candleWicks() and a tall window whose panes lie at windowPanes(). The picture is
// painted by code once per process and kept, so every run shows the same room.
#include <QImage>

namespace corvanel::meters {

// The picture at its natural size (1600 x 1000 pixels).
const QImage& candleRoom();

// Paints the room afresh at `size` pixels; candleRoom() keeps one of these.
QImage paintCandleRoom(QSize size);

}  // namespace corvanel::meters
