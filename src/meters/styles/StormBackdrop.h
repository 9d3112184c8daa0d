#pragma once
// The Valhalla style's sky panel behind each meter and the spectrum: a dark storm sky with three
// blurred clouds at the top and ember light in the two bottom corners. It never moves, so its
// users keep it in a static layer.
#include <QPainter>
#include <QSizeF>

namespace corvanel::meters {

struct StormBackdrop {
    static void paint(QPainter& painter, const QSizeF& size);
};

}  // namespace corvanel::meters
