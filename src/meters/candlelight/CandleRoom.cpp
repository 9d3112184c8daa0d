#include "meters/candlelight/CandleRoom.h"

#include <QPainter>
#include <QRadialGradient>

#include "meters/candlelight/CandleRoomPainting.h"

namespace corvanel::meters {

QImage paintCandleRoom(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return image;
    room::paintShell(image);

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const room::RoomCanvas canvas{static_cast<double>(size.width()),
                                  static_cast<double>(size.height())};
    room::paintWallDecor(painter, canvas);
    room::paintWindow(painter, canvas);
    room::paintFurniture(painter, canvas);
    room::paintCandles(painter, canvas);

    // The room's corners fall off into darkness; the scene adds its own vignette on top.
    QRadialGradient dark(canvas.at(0.42, 0.55), canvas.width * 0.72);
    dark.setColorAt(0.0, QColor(0, 0, 0, 0));
    dark.setColorAt(0.55, QColor(0, 0, 0, 0));
    dark.setColorAt(1.0, QColor(0, 0, 0, 150));
    painter.fillRect(image.rect(), dark);
    return image;
}

const QImage& candleRoom() {
    static const QImage picture = paintCandleRoom(QSize(1600, 1000));
    return picture;
}

}  // namespace corvanel::meters
