#include "meters/styles/StormBackdrop.h"

#include "meters/kit/ContinuousRect.h"
#include "meters/kit/InstrumentCase.h"
#include "meters/kit/LayerEffects.h"
#include "meters/styles/Storm.h"

namespace corvanel::meters {

void StormBackdrop::paint(QPainter& painter, const QSizeF& size) {
    const QRectF box(QPointF(), size);
    const double w = size.width();
    const double h = size.height();
    fillVertical(painter, box, 10, {rgb(0.11, 0.12, 0.18), rgb(0.03, 0.03, 0.06)});

    struct Cloud {
        double x, y, width, height;
        QColor fill;
        double blur;
    };
    const Cloud clouds[] = {
        {0.3, 0.05, 0.7, 0.3, grey(0.45, 0.2), 10},
        {0.75, 0.03, 0.8, 0.26, grey(0.3, 0.25), 12},
        {0.5, 0.1, 0.5, 0.22, rgb(0.55, 0.62, 0.8, 0.1), 14},
        {0.06, 0.98, 0.35, 0.18, Storm::ember(0.1), 10},
        {0.94, 0.98, 0.35, 0.18, Storm::ember(0.1), 10},
    };
    painter.save();
    painter.setClipPath(continuousRoundedRect(box, 10));
    for (const Cloud& cloud : clouds) {
        drawBlurred(painter, box, cloud.blur, [&](QPainter& layer) {
            layer.setPen(Qt::NoPen);
            layer.setBrush(cloud.fill);
            layer.drawEllipse(QPointF(cloud.x * w, cloud.y * h), cloud.width * w / 2,
                              cloud.height * h / 2);
        });
    }
    painter.restore();
    strokeInside(painter, box, 10, grey(1.0, 0.08), 1);
}

}  // namespace corvanel::meters
