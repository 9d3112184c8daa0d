#include "meters/kit/StaticLayer.h"

#include <cmath>

#include "meters/kit/LayerEffects.h"

namespace corvanel::meters {

void StaticLayer::prepare(const QPainter& painter, const QSizeF& size, const Paint& paint) {
    const double scale = pixelScale(painter);
    if (!image_.isNull() && size == size_ && scale == scale_) return;
    size_ = size;
    scale_ = scale;
    const QSize pixels(static_cast<int>(std::ceil((size.width() + 2 * margin_) * scale)),
                       static_cast<int>(std::ceil((size.height() + 2 * margin_) * scale)));
    image_ = QImage(pixels.expandedTo(QSize(1, 1)), QImage::Format_ARGB32_Premultiplied);
    image_.fill(Qt::transparent);
    QPainter layer(&image_);
    layer.setRenderHint(QPainter::Antialiasing);
    layer.setRenderHint(QPainter::TextAntialiasing);
    layer.setRenderHint(QPainter::SmoothPixmapTransform);
    layer.scale(scale, scale);
    layer.translate(margin_, margin_);
    paint(layer, size);
}

void StaticLayer::draw(QPainter& painter, const QSizeF& size, const Paint& paint) {
    prepare(painter, size, paint);
    painter.drawImage(
        QRectF(-margin_, -margin_, size.width() + 2 * margin_, size.height() + 2 * margin_),
        image_);
}

void StaticLayer::drawPart(QPainter& painter, const QRectF& part) const {
    if (image_.isNull() || part.isEmpty()) return;
    const QRectF pixels((part.left() + margin_) * scale_, (part.top() + margin_) * scale_,
                        part.width() * scale_, part.height() * scale_);
    // Edges are rounded to the nearest pixel: parts are cut along gaps between shapes.
    const QPoint topLeft(static_cast<int>(std::lround(pixels.left())),
                         static_cast<int>(std::lround(pixels.top())));
    const QPoint bottomRight(static_cast<int>(std::lround(pixels.right())),
                             static_cast<int>(std::lround(pixels.bottom())));
    const QRect source = QRect(topLeft, bottomRight - QPoint(1, 1)).intersected(image_.rect());
    if (source.isEmpty()) return;
    const QRectF target(source.x() / scale_ - margin_, source.y() / scale_ - margin_,
                        source.width() / scale_, source.height() / scale_);
    painter.drawImage(target, image_, QRectF(source));
}

}  // namespace corvanel::meters
