#pragma once
// The painting steps of the room picture, back to front. Coordinates are fractions of the
// picture (x of its width, y of its height), turned into pixels through RoomCanvas.
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QRectF>

namespace corvanel::meters::room {

// The floor meets the wall at this height; everything below is floor.
constexpr double floorLine = 0.575;

// The tops of the surfaces the higher candles stand on.
constexpr double highShelfTop = 0.135;   // upper right, wicks 0 to 2
constexpr double leftShelfTop = 0.215;   // upper left, wicks 3 to 5
constexpr double rightShelfTop = 0.345;  // right, wicks 9, 12, 14 and 16
constexpr double cabinetTop = 0.36;      // left, wicks 6 to 15 not on the right shelf
constexpr double sideTableTop = 0.455;   // right, wicks 17 to 19

struct RoomCanvas {
    double width;
    double height;

    QPointF at(double x, double y) const { return {x * width, y * height}; }
    QRectF rect(double left, double top, double right, double bottom) const {
        return QRectF(at(left, top), at(right, bottom));
    }
    // A length given as a fraction of the picture's height.
    double len(double fraction) const { return fraction * height; }
};

// Plaster wall and perspective wood floor, pixel by pixel.
void paintShell(QImage& image);
// Panelling, baseboard and the framed picture on the wall.
void paintWallDecor(QPainter& painter, const RoomCanvas& canvas);
// The night view, window frame with its mullions, sill and curtains.
void paintWindow(QPainter& painter, const RoomCanvas& canvas);
// The shelves, the cabinet and the side table the higher candles stand on.
void paintFurniture(QPainter& painter, const RoomCanvas& canvas);
// Light pools on walls and floor, then the candle bodies under every wick.
void paintCandles(QPainter& painter, const RoomCanvas& canvas);

}  // namespace corvanel::meters::room
