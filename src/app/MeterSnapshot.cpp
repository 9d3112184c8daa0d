#include "app/MeterSnapshot.h"

#include <QPainter>
#include <cmath>

#include "app/MeterRendererFactory.h"

namespace corvanel {

QImage renderMeterSnapshot(std::string_view rawValue, const meters::MeterValues& values,
                           const QSizeF& size, double scale) {
    QImage image(static_cast<int>(std::ceil(size.width() * scale)),
                 static_cast<int>(std::ceil(size.height() * scale)),
                 QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return image;
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    const std::unique_ptr<meters::MeterRenderer> renderer = makeMeterRenderer(rawValue);
    renderer->setValues(values);
    renderer->settle();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    renderer->paint(painter, size);
    return image;
}

}  // namespace corvanel
