#include "meters/kit/Needle.h"

#include <cmath>

#include "meters/kit/ContinuousRect.h"

namespace corvanel::meters {

namespace {

bool sameShape(const NeedleShape& a, const NeedleShape& b) {
    return a.width == b.width && a.length == b.length && a.colour == b.colour &&
           a.shadow.colour == b.shadow.colour && a.shadow.radius == b.shadow.radius &&
           a.shadow.offset == b.shadow.offset;
}

QRectF uprightBar(const NeedleShape& shape) {
    return {-shape.width / 2.0, -shape.length, shape.width, shape.length};
}

}  // namespace

void Needle::draw(QPainter& painter, const NeedleShape& shape, QPointF pivot, double degrees) {
    const double scale = pixelScale(painter);
    if (shape.shadow.colour.isValid() && shape.shadow.colour.alpha() > 0) {
        // The shadow falls at a fixed offset on the face while the needle turns, so it is a
        // separately rotated, pre-blurred copy of the bar.
        if (sprite_.isNull() || !sameShape(shape, spriteShape_) || scale != spriteScale_) {
            spriteShape_ = shape;
            spriteScale_ = scale;
            spriteMargin_ = shape.shadow.radius * 1.5 + 1.0;
            const QRectF bar = uprightBar(shape);
            const QRectF area =
                bar.adjusted(-spriteMargin_, -spriteMargin_, spriteMargin_, spriteMargin_);
            sprite_ = QImage(static_cast<int>(std::ceil(area.width() * scale)),
                             static_cast<int>(std::ceil(area.height() * scale)),
                             QImage::Format_ARGB32_Premultiplied);
            sprite_.fill(Qt::transparent);
            QPainter layer(&sprite_);
            layer.setRenderHint(QPainter::Antialiasing);
            layer.scale(scale, scale);
            layer.translate(-area.topLeft());
            layer.fillPath(capsule(bar), Qt::black);
            layer.end();
            sprite_ = shadowImage(sprite_, shape.shadow.colour, shape.shadow.radius / 2.0 * scale);
        }
        painter.save();
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.translate(pivot + shape.shadow.offset);
        painter.rotate(degrees);
        const QRectF bar = uprightBar(shape);
        painter.drawImage(
            bar.adjusted(-spriteMargin_, -spriteMargin_, spriteMargin_, spriteMargin_), sprite_);
        painter.restore();
    }
    painter.save();
    painter.translate(pivot);
    painter.rotate(degrees);
    painter.fillPath(capsule(uprightBar(shape)), shape.colour);
    painter.restore();
}

}  // namespace corvanel::meters
