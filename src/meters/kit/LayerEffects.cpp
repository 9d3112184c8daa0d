#include "meters/kit/LayerEffects.h"

#include <QPaintDevice>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <deque>
#include <vector>

#include "meters/kit/BoxBlur.h"
#include "meters/kit/Resample.h"

namespace corvanel::meters {

namespace {

// How much a blur of `sigma` pixels lets its layer shrink first: a wide Gaussian holds no detail
// finer than a few pixels, so blurring a half- or quarter-size copy and stretching it back looks
// the same and costs a quarter or a sixteenth.
int reductionFor(double sigma, const QSize& size) {
    if (sigma >= 4.0 && size.width() > 16 && size.height() > 16) return 4;
    if (sigma >= 1.5 && size.width() > 8 && size.height() > 8) return 2;
    return 1;
}

// The blur to apply to a copy shrunk by `factor`: averaging factor x factor blocks and stretching
// back bilinearly already spread the layer by a variance of factor^2 / 4 pixels^2, so only the
// rest is left to the blur.
double reducedSigma(double sigma, int factor) {
    if (factor == 1) return sigma;
    const double resampling = factor * factor / 4.0;
    return std::sqrt(std::max(sigma * sigma - resampling, 0.0)) / factor;
}

// Resizes `image` to `size` and `format` only when it differs, then clears it.
void reuse(QImage& image, const QSize& size, QImage::Format format) {
    if (image.size() != size || image.format() != format) image = QImage(size, format);
    image.fill(0);
}

// Coverage of every pixel of `layer`, as Format_Alpha8.
void coverageOf(const QImage& layer, QImage& alpha) {
    reuse(alpha, layer.size(), QImage::Format_Alpha8);
    const int width = layer.width();
    for (int y = 0; y < layer.height(); ++y) {
        const auto* in = reinterpret_cast<const QRgb*>(layer.constScanLine(y));
        std::uint8_t* out = alpha.scanLine(y);
        for (int x = 0; x < width; ++x)
            out[x] = static_cast<std::uint8_t>(qAlpha(in[x]));
    }
}

// `shadow` becomes `colour` laid over `alpha`'s coverage.
void tint(const QImage& alpha, const QColor& colour, QImage& shadow) {
    reuse(shadow, alpha.size(), QImage::Format_ARGB32_Premultiplied);
    const std::uint32_t r = static_cast<std::uint32_t>(colour.red());
    const std::uint32_t g = static_cast<std::uint32_t>(colour.green());
    const std::uint32_t b = static_cast<std::uint32_t>(colour.blue());
    const std::uint32_t a = static_cast<std::uint32_t>(colour.alpha());
    std::array<QRgb, 256> shades{};
    for (std::uint32_t level = 0; level < 256; ++level) {
        const std::uint32_t coverage = (level * a + 127) / 255;
        shades[level] =
            qRgba(static_cast<int>((r * coverage + 127) / 255),
                  static_cast<int>((g * coverage + 127) / 255),
                  static_cast<int>((b * coverage + 127) / 255), static_cast<int>(coverage));
    }
    const int width = alpha.width();
    for (int y = 0; y < alpha.height(); ++y) {
        const std::uint8_t* source = alpha.constScanLine(y);
        auto* target = reinterpret_cast<QRgb*>(shadow.scanLine(y));
        for (int x = 0; x < width; ++x)
            target[x] = shades[source[x]];
    }
}

// Offscreen images kept per thread and per nesting depth (a layer's content may itself draw a
// layer), reused while their size stays the same. A deque keeps outer sets in place as it grows.
struct ScratchSet {
    QImage layer;
    QImage alpha;
    QImage shadow;
    QImage enlarged;
};

class Scratch {
  public:
    Scratch() : depth_(depth()++) {
        std::deque<ScratchSet>& sets = pool();
        if (sets.size() <= depth_) sets.resize(depth_ + 1);
    }
    ~Scratch() { --depth(); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    ScratchSet& set() { return pool()[depth_]; }

  private:
    static std::size_t& depth() {
        thread_local std::size_t current = 0;
        return current;
    }
    static std::deque<ScratchSet>& pool() {
        thread_local std::deque<ScratchSet> sets;
        return sets;
    }
    std::size_t depth_;
};

// The device pixels a layer covering `bounds` grown by `margin` points takes: whole pixels, so
// the layer goes back pixel for pixel, with no resampling to blur or shift it, and Qt can blend
// it as a plain copy.
QRect layerPixels(const QPainter& painter, const QRectF& bounds, double margin) {
    const QRectF area = bounds.adjusted(-margin, -margin, margin, margin);
    QRect pixels = painter.deviceTransform().mapRect(area).toAlignedRect();
    pixels.setSize(pixels.size().expandedTo(QSize(1, 1)));
    return pixels;
}

// Renders `content` into `image`, a transparent image covering the device rectangle `pixels`,
// `reduction` device pixels to one image pixel.
void renderLayer(const QPainter& painter, const QRect& pixels, int reduction,
                 const LayerContent& content, QImage& image) {
    const QSize size((pixels.width() + reduction - 1) / reduction,
                     (pixels.height() + reduction - 1) / reduction);
    reuse(image, size, QImage::Format_ARGB32_Premultiplied);
    QPainter layer(&image);
    layer.setRenderHints(painter.renderHints());
    layer.setTransform(painter.deviceTransform() *
                       QTransform::fromTranslate(-pixels.left(), -pixels.top()) *
                       QTransform::fromScale(1.0 / reduction, 1.0 / reduction));
    content(layer);
    layer.end();
}

// Draws `image` with its top left corner at the device point `at`, whatever the painter's
// transform: pixel for pixel, a plain copy where `at` is a whole pixel.
void drawOnDevice(QPainter& painter, const QPointF& at, const QImage& image) {
    const double ratio = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    painter.save();
    painter.resetTransform();
    if (at != at.toPoint()) painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(at / ratio, QSizeF(image.size()) / ratio), image);
    painter.restore();
}

// `image` back at full size after it was worked on shrunk by `factor`: itself, or `enlarged`
// made from it. A shrunk image covers whole blocks, so the result may reach up to a block past
// the layer's own edge.
const QImage& atFullSize(const QImage& image, int factor, QImage& enlarged) {
    if (factor == 1) return image;
    enlarge(image, factor, enlarged);
    return enlarged;
}

// The shadow of `layer` into `scratch.shadow`, at the reduction its width allows.
void castShadow(const QImage& layer, const QColor& colour, double sigma, ScratchSet& scratch) {
    const int factor = reductionFor(sigma, layer.size());
    if (factor > 1)
        shrinkCoverage(layer, factor, scratch.alpha);
    else
        coverageOf(layer, scratch.alpha);
    blurAlpha(scratch.alpha, reducedSigma(sigma, factor));
    tint(scratch.alpha, colour, scratch.shadow);
}

}  // namespace

double pixelScale(const QPainter& painter) {
    const QTransform t = painter.deviceTransform();
    const double scale = std::sqrt(std::abs(t.determinant()));
    return scale > 0.0 ? scale : 1.0;
}

QImage shadowImage(const QImage& layer, const QColor& colour, double sigma) {
    ScratchSet scratch;
    castShadow(layer, colour, sigma, scratch);
    return scratch.shadow;
}

void drawWithShadow(QPainter& painter, const QRectF& bounds, const Shadow& shadow,
                    const LayerContent& content) {
    Scratch scratch;
    ScratchSet& images = scratch.set();
    const QRect pixels = layerPixels(painter, bounds, shadow.radius * 1.5 + 1.0);
    renderLayer(painter, pixels, 1, content, images.layer);
    const double sigma = shadow.radius / 2.0 * pixelScale(painter);
    castShadow(images.layer, shadow.colour, sigma, images);
    const int factor = reductionFor(sigma, images.layer.size());
    const QTransform toDevice = painter.deviceTransform();
    const QPointF offset = toDevice.map(shadow.offset) - toDevice.map(QPointF());
    drawOnDevice(painter, QPointF(pixels.topLeft()) + offset,
                 atFullSize(images.shadow, factor, images.enlarged));
    drawOnDevice(painter, pixels.topLeft(), images.layer);
}

void drawWithGlow(QPainter& painter, const QRectF& bounds, const QColor& colour, double radius,
                  const LayerContent& content) {
    drawWithShadow(painter, bounds, {colour, radius, QPointF()}, content);
}

void drawBlurred(QPainter& painter, const QRectF& bounds, double radius,
                 const LayerContent& content) {
    Scratch scratch;
    ScratchSet& images = scratch.set();
    const QRect pixels = layerPixels(painter, bounds, radius * 1.5 + 1.0);
    const double sigma = radius / 2.0 * pixelScale(painter);
    // Only the blur is shown, so a wide one renders its layer straight at the reduced size.
    const int factor = reductionFor(sigma, pixels.size());
    renderLayer(painter, pixels, factor, content, images.layer);
    blurImage(images.layer, reducedSigma(sigma, factor));
    drawOnDevice(painter, pixels.topLeft(), atFullSize(images.layer, factor, images.enlarged));
}

}  // namespace corvanel::meters
