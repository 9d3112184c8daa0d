#include "meters/kit/FramePainter.h"

#include <QSemaphore>
#include <QThreadPool>
#include <algorithm>
#include <cmath>

namespace corvanel::meters {

const QImage& FramePainter::paint(const QSize& size, double ratio, const Content& content) {
    const QSize pixels(std::max(1, static_cast<int>(std::ceil(size.width() * ratio))),
                       std::max(1, static_cast<int>(std::ceil(size.height() * ratio))));
    if (image_.size() != pixels) image_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    image_.setDevicePixelRatio(ratio);
    const auto paintFrame = [&] {
        image_.fill(Qt::transparent);
        QPainter painter(&image_);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::TextAntialiasing);
        content(painter);
    };
    QSemaphore done;
    const bool started = QThreadPool::globalInstance()->tryStart([&] {
        paintFrame();
        done.release();
    });
    // With every pool thread taken by someone else's work, the frame is painted right here
    // rather than queued behind it.
    if (started)
        done.acquire();
    else
        paintFrame();
    return image_;
}

}  // namespace corvanel::meters
