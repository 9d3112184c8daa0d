#include "meters/kit/InstrumentCase.h"

#include <QLinearGradient>

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"

namespace corvanel::meters {

void fillVertical(QPainter& painter, const QRectF& rect, double cornerRadius,
                  const VerticalGradient& gradient) {
    QLinearGradient fill(rect.topLeft(), rect.bottomLeft());
    fill.setColorAt(0.0, gradient.top);
    fill.setColorAt(1.0, gradient.bottom);
    painter.fillPath(continuousRoundedRect(rect, cornerRadius), fill);
}

void drawBezel(QPainter& painter, const QRectF& rect, double cornerRadius,
               const VerticalGradient& gradient, const Shadow& shadow) {
    drawWithShadow(painter, rect, shadow,
                   [&](QPainter& layer) { fillVertical(layer, rect, cornerRadius, gradient); });
}

void drawGlass(QPainter& painter, const QRectF& rect, double cornerRadius, double topOpacity,
               double middleOpacity) {
    QLinearGradient sheen(rect.topLeft(), QPointF(rect.center().x(), rect.bottom()));
    sheen.setColorAt(0.0, grey(1.0, topOpacity));
    sheen.setColorAt(0.5, grey(1.0, middleOpacity));
    sheen.setColorAt(1.0, grey(1.0, 0.0));
    painter.fillPath(continuousRoundedRect(rect, cornerRadius), sheen);
}

}  // namespace corvanel::meters
