#include "meters/FramePainter.h"

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
    QSemaphore done;
    // A reserved thread starts at once even while the pool is busy with background work.
    QThreadPool* pool = QThreadPool::globalInstance();
    pool->reserveThread();
    pool->startOnReservedThread([&] {
        image_.fill(Qt::transparent);
        QPainter painter(&image_);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::TextAntialiasing);
        content(painter);
        painter.end();
        done.release();
    });
    done.acquire();
    return image_;
}

}  // namespace corvanel::meters
