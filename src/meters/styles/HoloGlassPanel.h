#pragma once
// The Futuristic rack's dark blue glass panel behind the gauges and the spectrum: a rounded
// rectangle with a deep blue gradient, a faint cyan border and a soft drop shadow.
#include <QPainter>
#include <QSizeF>

namespace corvanel::meters {

void drawHoloGlassPanel(QPainter& painter, const QSizeF& size);

}  // namespace corvanel::meters
