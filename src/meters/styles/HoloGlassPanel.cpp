#include "meters/styles/HoloGlassPanel.h"

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/InstrumentCase.h"

namespace corvanel::meters {

void drawHoloGlassPanel(QPainter& painter, const QSizeF& size) {
    const QRectF box(QPointF(), size);
    drawBezel(painter, box, 10, {rgb(0.05, 0.08, 0.14), rgb(0.01, 0.02, 0.06)},
              {grey(0.0, 0.4), 3, {0, 2}});
    strokeInside(painter, box, 10, withOpacity(systemCyan(), 0.25), 1);
}

}  // namespace corvanel::meters
