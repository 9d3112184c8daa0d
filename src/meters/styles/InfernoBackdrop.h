#pragma once
// The Inferno style's rock panel behind each meter and the spectrum: dark volcanic rock with five
// glowing cracks rising from the bottom, a red glow along the bottom and shadow at the top. It
// never moves, so its users keep it in a static layer.
#include <QPainter>
#include <QSizeF>

namespace corvanel::meters {

struct InfernoBackdrop {
    static void paint(QPainter& painter, const QSizeF& size);
};

}  // namespace corvanel::meters
