#pragma once
// Paints a whole frame into an image on one thread of Qt's global thread pool while the caller
// waits. Qt's raster engine splits every fill of more than about a hundred spans across that
// pool unless it already runs on one of the pool's threads. A meter frame makes hundreds of such
// fills, each a few microseconds of work, and waking the pool for every one of them costs more
// than the fills: on two cores a frame took 1.2 to 5 times as long. Painting the frame on one
// pool thread keeps every fill on it; the caller then copies the finished image in one blend.
#include <QImage>
#include <QPainter>
#include <QSize>
#include <functional>

namespace corvanel::meters {

class FramePainter {
  public:
    using Content = std::function<void(QPainter&)>;

    // Clears the image to `size` points at `ratio` device pixels per point, paints `content`
    // on it (antialiased) and returns it. The caller is blocked meanwhile, so `content` may use
    // anything the caller owns. When no pool thread is free, the caller paints it itself.
    const QImage& paint(const QSize& size, double ratio, const Content& content);

  private:
    QImage image_;
};

}  // namespace corvanel::meters
