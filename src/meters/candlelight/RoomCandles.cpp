// The candles of the room picture: warm pools of light on the wall and floor, then one wax candle
// under every wick, standing on its shelf, the cabinet, the side table or the floor. Their wicks
// end exactly at the wick positions, where the scene draws the living flames.
#include <QLinearGradient>
#include <QPainterPath>
#include <QRadialGradient>
#include <algorithm>
#include <cmath>

#include "meters/candlelight/CandleRoomLayout.h"
#include "meters/candlelight/CandleRoomPainting.h"
#include "meters/candlelight/FlameAnchor.h"
#include "meters/kit/Colors.h"
#include "meters/kit/Noise.h"

namespace corvanel::meters::room {

namespace {

struct Candle {
    int index;
    QPointF wick;  // pixels
    double unit;   // the flame's unit length in pixels
    double base;   // pixels, where the candle stands
    double width;  // pixels
    bool onFloor;
};

double surfaceUnder(int index) {
    switch (index) {
        case 0:
        case 1:
        case 2:
            return highShelfTop;
        case 3:
        case 4:
        case 5:
            return leftShelfTop;
        case 9:
        case 12:
        case 14:
        case 16:
            return rightShelfTop;
        case 17:
        case 18:
        case 19:
            return sideTableTop;
        default:
            return cabinetTop;
    }
}

std::vector<Candle> candles(const RoomCanvas& c) {
    std::vector<Candle> result;
    for (const FlameAnchor& anchor : buildFlameAnchors(1)) {
        const int i = anchor.index;
        const bool onFloor = i >= 20;
        double base = 0;
        if (onFloor) {
            const double height = anchor.size * (3.3 + 0.6 * noise(i, 801));
            base = std::max(anchor.y + height, floorLine + 0.014 + 0.004 * noise(i, 802));
        } else {
            // Candles further forward on a surface stand a little lower on it.
            base = surfaceUnder(i) + 0.004 + 0.003 * noise(i, 802);
        }
        const double widthFactor = onFloor ? 1.5 + 0.3 * noise(i, 803) : 1.25 + 0.2 * noise(i, 803);
        const double unit = c.len(anchor.size);
        result.push_back(
            {i, c.at(anchor.x, anchor.y), unit, c.len(base), unit * widthFactor, onFloor});
    }
    return result;
}

QColor waxColour(int index) {
    const double pick = noise(index, 820);
    if (pick < -0.84) return rgb(0.52, 0.08, 0.07);  // a few deep red candles
    if (pick < -0.2) return rgb(0.90, 0.70, 0.44);   // honey beeswax
    if (pick < 0.4) return rgb(0.93, 0.83, 0.64);    // cream
    return rgb(0.95, 0.89, 0.76);                    // ivory
}

QColor shade(const QColor& colour, double k) {
    return rgb(std::min(1.0, colour.redF() * k), std::min(1.0, colour.greenF() * k),
               std::min(1.0, colour.blueF() * k), colour.alphaF());
}

void paintLightPools(QPainter& painter, const RoomCanvas& c, const std::vector<Candle>& all) {
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    const auto pool = [&](QPointF centre, double rx, double ry, double opacity) {
        QRadialGradient light(centre, rx);
        light.setColorAt(0.0, rgb(1.0, 0.55, 0.22, opacity));
        light.setColorAt(0.4, rgb(1.0, 0.45, 0.15, opacity * 0.35));
        light.setColorAt(1.0, rgb(1.0, 0.4, 0.1, 0.0));
        painter.save();
        painter.translate(centre);
        painter.scale(1.0, ry / rx);
        painter.translate(-centre);
        painter.setBrush(light);
        painter.drawEllipse(centre, rx, rx);
        painter.restore();
    };
    // Broad light of the candle groups.
    pool(c.at(0.2, 0.6), c.len(0.42), c.len(0.34), 0.16);
    pool(c.at(0.73, 0.56), c.len(0.3), c.len(0.22), 0.12);
    pool(c.at(0.25, 0.3), c.len(0.16), c.len(0.14), 0.10);
    pool(c.at(0.89, 0.33), c.len(0.17), c.len(0.15), 0.10);
    pool(c.at(0.14, 0.15), c.len(0.1), c.len(0.1), 0.08);
    pool(c.at(0.94, 0.07), c.len(0.09), c.len(0.09), 0.08);
    for (const Candle& candle : all) {
        pool(candle.wick, candle.unit * 6, candle.unit * 6, 0.09);
        pool(QPointF(candle.wick.x(), candle.base), candle.unit * 5, candle.unit * 1.4, 0.12);
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void paintDrips(QPainter& painter, const Candle& candle, const QColor& wax, double top,
                double rimDepth) {
    const double left = candle.wick.x() - candle.width / 2;
    const double bodyHeight = candle.base - top;
    for (int d = 0; d < 4; ++d) {
        if (noise(candle.index, 810 + d) < -0.35) continue;
        const double x =
            left + candle.width * (0.14 + 0.72 * (noise(candle.index, 814 + d) + 1) / 2);
        const double width = candle.unit * (0.11 + 0.07 * (noise(candle.index, 818 + d) + 1) / 2);
        const double length = std::min(
            bodyHeight * 0.85, candle.unit * (0.35 + 1.4 * (noise(candle.index, 822 + d) + 1) / 2));
        const double start = top + rimDepth * 0.35;
        QPainterPath drip;
        drip.moveTo(x - width * 0.8, start);
        drip.lineTo(x - width * 0.45, start + length - width);
        drip.cubicTo(x - width * 0.75, start + length + width * 0.5, x + width * 0.75,
                     start + length + width * 0.5, x + width * 0.45, start + length - width);
        drip.lineTo(x + width * 0.8, start);
        drip.closeSubpath();
        QLinearGradient body(QPointF(x - width, 0), QPointF(x + width, 0));
        body.setColorAt(0.0, shade(wax, 0.62));
        body.setColorAt(0.4, shade(wax, 1.12));
        body.setColorAt(1.0, shade(wax, 0.7));
        painter.setBrush(body);
        painter.drawPath(drip);
        painter.setBrush(rgb(1, 0.97, 0.9, 0.35));
        painter.drawEllipse(QPointF(x - width * 0.2, start + length - width * 0.45), width * 0.18,
                            width * 0.28);
    }
}

void paintCandle(QPainter& painter, const Candle& candle) {
    const QColor wax = waxColour(candle.index);
    const double x = candle.wick.x();
    const double half = candle.width / 2;
    const double rimDepth = candle.width * (candle.onFloor ? 0.3 : 0.22);
    const double top = candle.wick.y() + candle.unit * 0.3;

    // Contact shadow, and a brass dish under some of the floor candles.
    QRadialGradient contact(QPointF(x, candle.base), candle.width);
    contact.setColorAt(0.0, rgb(0, 0, 0, 0.6));
    contact.setColorAt(1.0, rgb(0, 0, 0, 0));
    painter.setBrush(contact);
    painter.drawEllipse(QPointF(x, candle.base), candle.width, rimDepth * 1.3);
    if (candle.onFloor && noise(candle.index, 830) > 0.1) {
        const QRectF dish(x - candle.width * 0.95, candle.base - rimDepth * 0.7, candle.width * 1.9,
                          rimDepth * 1.5);
        QLinearGradient brass(dish.topLeft(), dish.bottomLeft());
        brass.setColorAt(0.0, rgb(0.85, 0.62, 0.3));
        brass.setColorAt(0.5, rgb(0.45, 0.28, 0.1));
        brass.setColorAt(1.0, rgb(0.15, 0.08, 0.03));
        painter.setBrush(brass);
        painter.drawEllipse(dish);
    }

    QPainterPath body;
    body.moveTo(x - half, top);
    body.lineTo(x - half, candle.base);
    body.arcTo(QRectF(x - half, candle.base - rimDepth / 2, candle.width, rimDepth), 180, 180);
    body.lineTo(x + half, top);
    body.closeSubpath();
    QLinearGradient round(QPointF(x - half, 0), QPointF(x + half, 0));
    round.setColorAt(0.0, shade(wax, 0.32));
    round.setColorAt(0.28, shade(wax, 0.92));
    round.setColorAt(0.5, shade(wax, 0.82));
    round.setColorAt(1.0, shade(wax, 0.36));
    painter.setBrush(round);
    painter.drawPath(body);
    // Light from the flame glows through the upper wax; the foot stays in shadow.
    const double height = candle.base - top;
    QLinearGradient glow(QPointF(0, top), QPointF(0, candle.base));
    glow.setColorAt(0.0, rgb(1.0, 0.72, 0.35, 0.55));
    glow.setColorAt(std::min(1.0, candle.unit * 2.2 / std::max(height, 1.0)),
                    rgb(1.0, 0.6, 0.25, 0.0));
    glow.setColorAt(1.0, rgb(0, 0, 0, 0.35));
    painter.setBrush(glow);
    painter.drawPath(body);

    paintDrips(painter, candle, wax, top, rimDepth);

    // The top: a rim and a pool of molten wax lit from above.
    const QRectF rim(x - half, top - rimDepth / 2, candle.width, rimDepth);
    painter.setBrush(shade(wax, 1.05));
    painter.drawEllipse(rim);
    const QRectF pool =
        rim.adjusted(candle.width * 0.1, rimDepth * 0.12, -candle.width * 0.1, -rimDepth * 0.08);
    QRadialGradient molten(QPointF(x, top), pool.width() / 2);
    molten.setColorAt(0.0, rgb(1.0, 0.9, 0.6));
    molten.setColorAt(1.0, shade(wax, 0.85));
    painter.setBrush(molten);
    painter.drawEllipse(pool);

    // The wick, charred, its tip glowing where the flame sits.
    painter.setPen(QPen(rgb(0.09, 0.05, 0.03), std::max(1.0, candle.unit * 0.07), Qt::SolidLine,
                        Qt::RoundCap));
    painter.drawLine(QPointF(x, top), candle.wick + QPointF(candle.unit * 0.03, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(rgb(1.0, 0.45, 0.1, 0.9));
    painter.drawEllipse(candle.wick + QPointF(candle.unit * 0.03, 0), candle.unit * 0.05,
                        candle.unit * 0.05);
}

}  // namespace

void paintCandles(QPainter& painter, const RoomCanvas& c) {
    painter.save();
    painter.setPen(Qt::NoPen);
    const std::vector<Candle> all = candles(c);
    paintLightPools(painter, c, all);
    for (const Candle& candle : all)
        paintCandle(painter, candle);
    painter.restore();
}

}  // namespace corvanel::meters::room
