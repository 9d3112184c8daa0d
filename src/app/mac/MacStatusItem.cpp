#include "app/mac/MacStatusItem.h"

#include <cmath>

namespace corvanel {

MacStatusItem::MacStatusItem()
    : native_([this] {
          if (onActivated) onActivated();
      }) {}

void MacStatusItem::setLabelImage(const QImage& templateImage) {
    const QImage pixels = templateImage.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    native_.setTemplateImage({pixels.constBits(), pixels.width(), pixels.height(),
                              static_cast<int>(pixels.bytesPerLine()), pixels.devicePixelRatio()});
}

void MacStatusItem::setInserted(bool inserted) {
    native_.setInserted(inserted);
}

QRect MacStatusItem::geometry() const {
    const std::optional<ScreenRect> frame = native_.buttonFrame();
    if (!frame) return {};
    return QRectF(frame->x, frame->y, frame->width, frame->height).toAlignedRect();
}

}  // namespace corvanel
