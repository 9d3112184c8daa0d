#include "app/CandlelightSnapshot.h"

#include <QPainter>
#include <cmath>

#include "meters/candlelight/CandleRoom.h"
#include "meters/candlelight/CandlelightScene.h"

namespace corvanel {

QImage renderCandlelightSnapshot(const std::vector<float>& levels, double time, const QSizeF& size,
                                 double scale) {
    QImage image(static_cast<int>(std::ceil(size.width() * scale)),
                 static_cast<int>(std::ceil(size.height() * scale)),
                 QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return image;
    image.setDevicePixelRatio(scale);
    image.fill(Qt::black);
    meters::CandlelightLayers layers;
    QPainter painter(&image);
    meters::CandlelightScene(levels, time).paint(painter, size, meters::candleRoom(), layers);
    return image;
}

}  // namespace corvanel
