#include "app/Symbols.h"

#include <QPainter>
#include <QPainterPath>
#include <array>
#include <cmath>

namespace corvanel {
namespace {

// Each symbol is drawn in a 16 × 16 unit square.
void drawSymbol(QPainter& painter, Symbol symbol, const QColor& color) {
    QPen pen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    switch (symbol) {
        case Symbol::waveform: {
            // Strokes three units apart: at one pixel per unit the gaps between them still show.
            constexpr std::array<double, 5> heights{5, 10, 13, 8, 4};
            pen.setWidthF(1.5);
            painter.setPen(pen);
            for (std::size_t i = 0; i < heights.size(); ++i) {
                const double x = 2.0 + double(i) * 3.0;
                painter.drawLine(QPointF(x, 8 - heights[i] / 2), QPointF(x, 8 + heights[i] / 2));
            }
            break;
        }
        case Symbol::arrowRight:
            painter.drawLine(QPointF(2, 8), QPointF(14, 8));
            painter.drawPolyline(QPolygonF({QPointF(9, 3), QPointF(14, 8), QPointF(9, 13)}));
            break;
        case Symbol::chevronDown:
            pen.setWidthF(2.4);
            painter.setPen(pen);
            painter.drawPolyline(QPolygonF({QPointF(2.5, 5), QPointF(8, 11), QPointF(13.5, 5)}));
            break;
        case Symbol::windowOnRectangle:
            painter.drawRoundedRect(QRectF(1, 4, 10, 9), 1.5, 1.5);
            painter.drawLine(QPointF(1, 6.5), QPointF(11, 6.5));
            painter.drawPolyline(
                QPolygonF({QPointF(4, 2), QPointF(15, 2), QPointF(15, 10), QPointF(13, 10)}));
            break;
    }
}

}  // namespace

QPixmap symbolPixmap(Symbol symbol, const QColor& color, qreal pointSize, qreal pixelRatio) {
    const int pixels = int(std::ceil(pointSize * pixelRatio));
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / 16.0, pixels / 16.0);
    drawSymbol(painter, symbol, color);
    painter.end();
    pixmap.setDevicePixelRatio(pixelRatio);
    return pixmap;
}

QIcon symbolIcon(Symbol symbol, const QColor& color, qreal pointSize) {
    QIcon icon;
    icon.addPixmap(symbolPixmap(symbol, color, pointSize, 1.0));
    icon.addPixmap(symbolPixmap(symbol, color, pointSize, 2.0));
    return icon;
}

}  // namespace corvanel
