#include "meters/LayerEffects.h"

#include <QPaintDevice>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace corvanel::meters {

namespace {

// Widths of three successive box filters whose combination approximates a Gaussian of `sigma`.
std::array<int, 3> boxRadiiFor(double sigma) {
    constexpr int passes = 3;
    const double ideal = std::sqrt(12.0 * sigma * sigma / passes + 1.0);
    int lower = static_cast<int>(std::floor(ideal));
    if (lower % 2 == 0) --lower;
    const int upper = lower + 2;
    const double m =
        (12.0 * sigma * sigma - passes * lower * lower - 4.0 * passes * lower - 3.0 * passes) /
        (-4.0 * lower - 4.0);
    const int lowerCount = static_cast<int>(std::lround(m));
    std::array<int, 3> radii{};
    for (int i = 0; i < passes; ++i)
        radii[static_cast<std::size_t>(i)] = ((i < lowerCount ? lower : upper) - 1) / 2;
    return radii;
}

// One running-sum box pass over `count` samples of `channels` interleaved channels, reading with
// `stride` between samples. Edges are treated as transparent, like a layer's outside.
void boxPass(std::uint8_t* data, int count, int stride, int channels, int radius,
             std::vector<std::uint32_t>& scratch) {
    if (radius <= 0 || count <= 0) return;
    scratch.resize(static_cast<std::size_t>(count) * static_cast<std::size_t>(channels));
    const std::uint32_t window = static_cast<std::uint32_t>(2 * radius + 1);
    for (int c = 0; c < channels; ++c) {
        std::uint32_t sum = 0;
        for (int i = 0; i <= std::min(radius, count - 1); ++i)
            sum += data[static_cast<std::ptrdiff_t>(i) * stride + c];
        for (int i = 0; i < count; ++i) {
            scratch[static_cast<std::size_t>(i * channels + c)] = (sum + window / 2) / window;
            const int entering = i + radius + 1;
            const int leaving = i - radius;
            if (entering < count) sum += data[static_cast<std::ptrdiff_t>(entering) * stride + c];
            if (leaving >= 0) sum -= data[static_cast<std::ptrdiff_t>(leaving) * stride + c];
        }
    }
    for (int i = 0; i < count; ++i)
        for (int c = 0; c < channels; ++c)
            data[static_cast<std::ptrdiff_t>(i) * stride + c] =
                static_cast<std::uint8_t>(scratch[static_cast<std::size_t>(i * channels + c)]);
}

void blurChannels(QImage& image, int channels, double sigma) {
    if (!(sigma > 0.2) || image.isNull()) return;
    const std::array<int, 3> radii = boxRadiiFor(sigma);
    std::vector<std::uint32_t> scratch;
    const int width = image.width();
    const int height = image.height();
    const int line = static_cast<int>(image.bytesPerLine());
    std::uint8_t* bits = image.bits();
    for (const int radius : radii) {
        for (int y = 0; y < height; ++y)
            boxPass(bits + static_cast<std::ptrdiff_t>(y) * line, width, channels, channels, radius,
                    scratch);
        for (int x = 0; x < width; ++x)
            boxPass(bits + static_cast<std::ptrdiff_t>(x) * channels, height, line, channels,
                    radius, scratch);
    }
}

struct Offscreen {
    QImage image;
    QRectF area;  // in the painter's coordinates
};

// Renders `content` into a transparent image covering `bounds` grown by `margin` points.
Offscreen renderLayer(const QPainter& painter, const QRectF& bounds, double margin,
                      const LayerContent& content) {
    const double scale = pixelScale(painter);
    const QRectF area = bounds.adjusted(-margin, -margin, margin, margin);
    const QSize pixels(std::max(1, static_cast<int>(std::ceil(area.width() * scale))),
                       std::max(1, static_cast<int>(std::ceil(area.height() * scale))));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter layer(&image);
    layer.setRenderHints(painter.renderHints());
    layer.scale(scale, scale);
    layer.translate(-area.topLeft());
    content(layer);
    layer.end();
    return {std::move(image), area};
}

}  // namespace

double pixelScale(const QPainter& painter) {
    const QTransform t = painter.deviceTransform();
    const double scale = std::sqrt(std::abs(t.determinant()));
    return scale > 0.0 ? scale : 1.0;
}

QImage shadowImage(const QImage& layer, const QColor& colour, double sigma) {
    QImage alpha = layer.convertToFormat(QImage::Format_Alpha8);
    blurAlpha(alpha, sigma);
    QImage shadow(alpha.size(), QImage::Format_ARGB32_Premultiplied);
    const std::uint32_t r = static_cast<std::uint32_t>(colour.red());
    const std::uint32_t g = static_cast<std::uint32_t>(colour.green());
    const std::uint32_t b = static_cast<std::uint32_t>(colour.blue());
    const std::uint32_t a = static_cast<std::uint32_t>(colour.alpha());
    for (int y = 0; y < alpha.height(); ++y) {
        const std::uint8_t* source = alpha.constScanLine(y);
        auto* target = reinterpret_cast<QRgb*>(shadow.scanLine(y));
        for (int x = 0; x < alpha.width(); ++x) {
            const std::uint32_t coverage = (source[x] * a + 127) / 255;
            target[x] =
                qRgba(static_cast<int>((r * coverage + 127) / 255),
                      static_cast<int>((g * coverage + 127) / 255),
                      static_cast<int>((b * coverage + 127) / 255), static_cast<int>(coverage));
        }
    }
    return shadow;
}

void blurAlpha(QImage& alpha, double sigma) {
    blurChannels(alpha, 1, sigma);
}

void blurImage(QImage& image, double sigma) {
    blurChannels(image, 4, sigma);
}

void drawWithShadow(QPainter& painter, const QRectF& bounds, const Shadow& shadow,
                    const LayerContent& content) {
    const double margin = shadow.radius * 1.5 + 1.0;
    const Offscreen layer = renderLayer(painter, bounds, margin, content);
    const double sigma = shadow.radius / 2.0 * pixelScale(painter);
    const QImage cast = shadowImage(layer.image, shadow.colour, sigma);
    painter.drawImage(layer.area.translated(shadow.offset), cast);
    painter.drawImage(layer.area, layer.image);
}

void drawWithGlow(QPainter& painter, const QRectF& bounds, const QColor& colour, double radius,
                  const LayerContent& content) {
    drawWithShadow(painter, bounds, {colour, radius, QPointF()}, content);
}

void drawBlurred(QPainter& painter, const QRectF& bounds, double radius,
                 const LayerContent& content) {
    Offscreen layer = renderLayer(painter, bounds, radius * 1.5 + 1.0, content);
    blurImage(layer.image, radius / 2.0 * pixelScale(painter));
    painter.drawImage(layer.area, layer.image);
}

}  // namespace corvanel::meters
