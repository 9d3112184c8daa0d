#pragma once
// A layer that does not move (bezel, face, printed scale), kept as an image and redrawn only when
// the size or the pixel scale changes. The image may reach `margin` points beyond the layer's box
// so that shadows cast outside it are kept too.
#include <QImage>
#include <QPainter>
#include <QSizeF>
#include <functional>

namespace corvanel::meters {

class StaticLayer {
  public:
    using Paint = std::function<void(QPainter&, const QSizeF&)>;

    explicit StaticLayer(double margin = 0.0) : margin_(margin) {}

    // Draws the layer with its top-left at the painter's origin, first repainting the image with
    // `paint` if the size or pixel scale differs from the last time.
    void draw(QPainter& painter, const QSizeF& size, const Paint& paint);

    // Draws only `part` (in the layer's points) of the cached image, widened to whole device
    // pixels; call after prepare or draw in the same frame.
    void drawPart(QPainter& painter, const QRectF& part) const;

    // Forces the next draw to repaint (e.g. when a printed text changes).
    void invalidate() { image_ = QImage(); }

    // The image as cached, for renderers that blit parts of it; call after draw or prepare.
    const QImage& image() const { return image_; }
    void prepare(const QPainter& painter, const QSizeF& size, const Paint& paint);

  private:
    double margin_;
    QImage image_;
    QSizeF size_;
    double scale_ = 0.0;
};

}  // namespace corvanel::meters
