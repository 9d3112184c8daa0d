// The wall's panelling and framed painting, and the furniture under the higher candles: two
// bracketed shelves at the top, a shelf and a round side table on the right, a cabinet on the
// left.
#include <QLinearGradient>
#include <QPainterPath>
#include <QRadialGradient>
#include <cmath>

#include "meters/candlelight/CandleRoomPainting.h"
#include "meters/kit/Colors.h"
#include "meters/kit/Noise.h"

namespace corvanel::meters::room {

namespace {

QLinearGradient woodAcross(const QRectF& r, double light) {
    QLinearGradient wood(r.topLeft(), r.bottomLeft());
    wood.setColorAt(0.0, rgb(0.34 * light, 0.19 * light, 0.10 * light));
    wood.setColorAt(0.25, rgb(0.26 * light, 0.14 * light, 0.075 * light));
    wood.setColorAt(1.0, rgb(0.10 * light, 0.055 * light, 0.03 * light));
    return wood;
}

void paintPanelMoulding(QPainter& painter, const QRectF& r, double line) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(rgb(0, 0, 0, 0.45), line));
    painter.drawLine(r.topLeft(), r.topRight());
    painter.drawLine(r.topLeft(), r.bottomLeft());
    painter.setPen(QPen(rgb(0.55, 0.32, 0.18, 0.22), line));
    painter.drawLine(r.bottomLeft(), r.bottomRight());
    painter.drawLine(r.topRight(), r.bottomRight());
    painter.setPen(Qt::NoPen);
}

void paintShelf(QPainter& painter, const RoomCanvas& c, double left, double right, double top) {
    const QRectF board = c.rect(left, top, right, top + 0.013);
    QRadialGradient shadow(c.at((left + right) / 2, top + 0.02), c.len(0.05));
    shadow.setColorAt(0.0, rgb(0, 0, 0, 0.5));
    shadow.setColorAt(1.0, rgb(0, 0, 0, 0));
    painter.setBrush(shadow);
    painter.drawRect(c.rect(left - 0.01, top + 0.01, right + 0.01, top + 0.07));
    for (const double x : {left + 0.15 * (right - left), right - 0.15 * (right - left)}) {
        QPainterPath bracket;
        bracket.moveTo(c.at(x - 0.004, top + 0.013));
        bracket.lineTo(c.at(x + 0.004, top + 0.013));
        bracket.lineTo(c.at(x + 0.004, top + 0.022));
        bracket.quadTo(c.at(x + 0.004, top + 0.05), c.at(x, top + 0.055));
        bracket.lineTo(c.at(x - 0.004, top + 0.055));
        bracket.closeSubpath();
        painter.setBrush(rgb(0.08, 0.045, 0.025));
        painter.drawPath(bracket);
    }
    painter.setBrush(woodAcross(board, 1.0));
    painter.drawRect(board);
    painter.setBrush(rgb(0.55, 0.34, 0.18, 0.5));
    painter.drawRect(QRectF(board.topLeft(), QSizeF(board.width(), c.len(0.002))));
}

void paintCabinet(QPainter& painter, const RoomCanvas& c) {
    const QRectF body = c.rect(0.196, cabinetTop + 0.012, 0.314, floorLine + 0.012);
    QLinearGradient front(body.topLeft(), body.bottomLeft());
    front.setColorAt(0.0, rgb(0.20, 0.105, 0.055));
    front.setColorAt(1.0, rgb(0.07, 0.035, 0.02));
    painter.setBrush(front);
    painter.drawRect(body);
    // Two panelled doors with brass knobs.
    const double line = c.len(0.0018);
    for (int door = 0; door < 2; ++door) {
        const double left = 0.202 + door * 0.056;
        const QRectF panel = c.rect(left + 0.006, cabinetTop + 0.035, left + 0.05, 0.55);
        paintPanelMoulding(painter, panel, line);
        const QPointF knob = c.at(door == 0 ? left + 0.046 : left + 0.01, 0.45);
        QRadialGradient brass(knob - QPointF(line, line), c.len(0.006));
        brass.setColorAt(0.0, rgb(1.0, 0.82, 0.45));
        brass.setColorAt(1.0, rgb(0.35, 0.2, 0.05));
        painter.setBrush(brass);
        painter.drawEllipse(knob, c.len(0.0045), c.len(0.0045));
    }
    const QRectF top = c.rect(0.187, cabinetTop - 0.002, 0.323, cabinetTop + 0.014);
    painter.setBrush(woodAcross(top, 1.25));
    painter.drawRect(top);
    painter.setBrush(rgb(0.7, 0.45, 0.25, 0.45));
    painter.drawRect(QRectF(top.topLeft(), QSizeF(top.width(), c.len(0.0022))));
}

void paintSideTable(QPainter& painter, const RoomCanvas& c) {
    const double centre = 0.91;
    const QRectF column = c.rect(centre - 0.006, sideTableTop + 0.01, centre + 0.006, 0.585);
    QLinearGradient turned(column.topLeft(), column.topRight());
    turned.setColorAt(0.0, rgb(0.06, 0.03, 0.015));
    turned.setColorAt(0.35, rgb(0.30, 0.17, 0.09));
    turned.setColorAt(1.0, rgb(0.05, 0.025, 0.015));
    painter.setBrush(turned);
    painter.drawRect(column);
    QPainterPath feet;
    feet.moveTo(c.at(centre - 0.006, 0.575));
    feet.quadTo(c.at(centre - 0.02, 0.59), c.at(centre - 0.032, 0.606));
    feet.lineTo(c.at(centre - 0.026, 0.608));
    feet.quadTo(c.at(centre - 0.01, 0.598), c.at(centre, 0.592));
    feet.quadTo(c.at(centre + 0.01, 0.598), c.at(centre + 0.026, 0.608));
    feet.lineTo(c.at(centre + 0.032, 0.606));
    feet.quadTo(c.at(centre + 0.02, 0.59), c.at(centre + 0.006, 0.575));
    feet.closeSubpath();
    painter.setBrush(rgb(0.12, 0.065, 0.035));
    painter.drawPath(feet);

    const QRectF edge = c.rect(0.862, sideTableTop - 0.004, 0.958, sideTableTop + 0.016);
    painter.setBrush(woodAcross(edge, 0.9));
    painter.drawEllipse(edge);
    const QRectF top = c.rect(0.862, sideTableTop - 0.008, 0.958, sideTableTop + 0.01);
    QLinearGradient polish(top.topLeft(), top.bottomRight());
    polish.setColorAt(0.0, rgb(0.45, 0.27, 0.14));
    polish.setColorAt(1.0, rgb(0.22, 0.12, 0.06));
    painter.setBrush(polish);
    painter.drawEllipse(top);
}

void paintPainting(QPainter& painter, const RoomCanvas& c) {
    const QRectF outer = c.rect(0.635, 0.12, 0.775, 0.33);
    QLinearGradient gilt(outer.topLeft(), outer.bottomRight());
    gilt.setColorAt(0.0, rgb(0.55, 0.40, 0.18));
    gilt.setColorAt(0.5, rgb(0.30, 0.20, 0.08));
    gilt.setColorAt(1.0, rgb(0.18, 0.11, 0.04));
    painter.setBrush(gilt);
    painter.drawRect(outer);
    const QRectF canvasArea =
        outer.adjusted(c.len(0.014), c.len(0.014), -c.len(0.014), -c.len(0.014));
    // A dim old landscape: dusk sky over dark hills and a lake.
    QLinearGradient dusk(canvasArea.topLeft(), canvasArea.bottomLeft());
    dusk.setColorAt(0.0, rgb(0.10, 0.09, 0.08));
    dusk.setColorAt(0.45, rgb(0.24, 0.17, 0.10));
    dusk.setColorAt(0.6, rgb(0.08, 0.08, 0.05));
    dusk.setColorAt(1.0, rgb(0.05, 0.045, 0.03));
    painter.setBrush(dusk);
    painter.drawRect(canvasArea);
    QPainterPath hills;
    hills.moveTo(canvasArea.left(), canvasArea.bottom());
    for (int i = 0; i <= 12; ++i) {
        const double x = canvasArea.left() + canvasArea.width() * i / 12.0;
        const double y = canvasArea.top() + canvasArea.height() * (0.52 - 0.12 * std::sin(i * 0.6) +
                                                                   0.03 * noise(i, 701));
        hills.lineTo(x, y);
    }
    hills.lineTo(canvasArea.bottomRight());
    hills.closeSubpath();
    painter.setBrush(rgb(0.06, 0.06, 0.035));
    painter.drawPath(hills);
    QRectF lake(canvasArea.left(), canvasArea.top() + canvasArea.height() * 0.72,
                canvasArea.width(), canvasArea.height() * 0.12);
    painter.setBrush(rgb(0.22, 0.16, 0.09, 0.6));
    painter.drawRect(lake);
    const double line = c.len(0.002);
    paintPanelMoulding(painter, canvasArea, line);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(rgb(0.85, 0.65, 0.3, 0.3), line));
    painter.drawRect(outer.adjusted(line, line, -line, -line));
    painter.setPen(Qt::NoPen);
}

}  // namespace

void paintWallDecor(QPainter& painter, const RoomCanvas& c) {
    painter.save();
    painter.setPen(Qt::NoPen);
    // Panelling below the chair rail.
    constexpr double rail = 0.44;
    painter.setBrush(rgb(0.05, 0.02, 0.01, 0.35));
    painter.drawRect(c.rect(0, rail, 1, floorLine));
    const double line = c.len(0.0018);
    for (int i = 0; i < 9; ++i) {
        const double left = 0.012 + i * 0.112;
        paintPanelMoulding(painter, c.rect(left, rail + 0.022, left + 0.09, floorLine - 0.03),
                           line);
    }
    const QRectF railRect = c.rect(0, rail - 0.004, 1, rail + 0.006);
    painter.setBrush(woodAcross(railRect, 1.1));
    painter.drawRect(railRect);
    const QRectF skirting = c.rect(0, floorLine - 0.02, 1, floorLine + 0.002);
    painter.setBrush(woodAcross(skirting, 0.8));
    painter.drawRect(skirting);
    paintPainting(painter, c);
    painter.restore();
}

void paintFurniture(QPainter& painter, const RoomCanvas& c) {
    painter.save();
    painter.setPen(Qt::NoPen);
    paintShelf(painter, c, 0.895, 1.01, highShelfTop);
    paintShelf(painter, c, 0.095, 0.198, leftShelfTop);
    paintShelf(painter, c, 0.815, 0.975, rightShelfTop);
    paintCabinet(painter, c);
    paintSideTable(painter, c);
    painter.restore();
}

}  // namespace corvanel::meters::room
