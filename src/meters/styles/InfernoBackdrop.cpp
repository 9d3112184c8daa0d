#include "meters/styles/InfernoBackdrop.h"

#include <QPainterPath>
#include <QPolygonF>

#include "meters/kit/ContinuousRect.h"
#include "meters/kit/InstrumentCase.h"
#include "meters/kit/LayerEffects.h"
#include "meters/kit/Noise.h"
#include "meters/styles/Lava.h"

namespace corvanel::meters {

void InfernoBackdrop::paint(QPainter& painter, const QSizeF& size) {
    const QRectF box(QPointF(), size);
    const double w = size.width();
    const double h = size.height();
    fillVertical(painter, box, 10, {rgb(0.13, 0.07, 0.05), rgb(0.04, 0.01, 0.01)});

    painter.save();
    painter.setClipPath(continuousRoundedRect(box, 10));
    drawWithGlow(painter, box, Lava::red(0.7), 2, [&](QPainter& layer) {
        layer.setPen(QPen(Lava::red(0.22), 1, Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin));
        layer.setBrush(Qt::NoBrush);
        for (int k = 0; k < 5; ++k) {
            const QPointF start(w * (0.19 * k + 0.12), h);
            const QPointF end(start.x() + 0.06 * w * noise(200 + k, 1),
                              h * (0.45 + 0.09 * (noise(210 + k, 2) + 1)));
            QPolygonF crack{start};
            for (int j = 1; j <= 5; ++j) {
                const QPointF along = start + (end - start) * (j / 6.0);
                crack << along + QPointF(0.015 * w * noise(220 + k, j), 0);
            }
            crack << end;
            layer.drawPolyline(crack);
        }
    });
    drawBlurred(painter, box, 12, [&](QPainter& layer) {
        layer.setPen(Qt::NoPen);
        layer.setBrush(Lava::red(0.14));
        layer.drawEllipse(QPointF(0.5 * w, 1.02 * h), 0.55 * w, 0.15 * h);
    });
    drawBlurred(painter, box, 10, [&](QPainter& layer) {
        layer.setPen(Qt::NoPen);
        layer.setBrush(rgb(0, 0, 0, 0.45));
        layer.drawEllipse(QPointF(0.5 * w, -0.02 * h), 0.6 * w, 0.13 * h);
    });
    painter.restore();
    strokeInside(painter, box, 10, Lava::orange(0.1), 1);
}

}  // namespace corvanel::meters
