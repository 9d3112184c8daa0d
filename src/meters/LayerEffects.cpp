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

// Running-sum box passes between two buffers of `width` x `height` samples of `channels`
// interleaved channels, `line` bytes per row. Outside the image counts as transparent, like a
// layer's surroundings. The vertical pass keeps one running sum per column and walks the rows,
// so it reads memory in order.
struct BoxBlur {
    int width;
    int height;
    int channels;
    std::ptrdiff_t line;
    std::vector<std::uint32_t> sums;

    static std::uint64_t reciprocal(int radius) {
        return (std::uint64_t{1} << 32) / static_cast<std::uint64_t>(2 * radius + 1);
    }
    static std::uint8_t average(std::uint32_t sum, std::uint64_t reciprocal) {
        return static_cast<std::uint8_t>((sum * reciprocal + (std::uint64_t{1} << 31)) >> 32);
    }

    void horizontal(const std::uint8_t* source, std::uint8_t* target, int radius) {
        const std::uint64_t r = reciprocal(radius);
        for (int y = 0; y < height; ++y) {
            const std::uint8_t* in = source + y * line;
            std::uint8_t* out = target + y * line;
            for (int c = 0; c < channels; ++c) {
                std::uint32_t sum = 0;
                for (int x = 0; x <= std::min(radius, width - 1); ++x)
                    sum += in[x * channels + c];
                for (int x = 0; x < width; ++x) {
                    out[x * channels + c] = average(sum, r);
                    const int entering = x + radius + 1;
                    const int leaving = x - radius;
                    if (entering < width) sum += in[entering * channels + c];
                    if (leaving >= 0) sum -= in[leaving * channels + c];
                }
            }
        }
    }

    void vertical(const std::uint8_t* source, std::uint8_t* target, int radius) {
        const std::uint64_t r = reciprocal(radius);
        const int rowSamples = width * channels;
        sums.assign(static_cast<std::size_t>(rowSamples), 0);
        for (int y = 0; y <= std::min(radius, height - 1); ++y)
            for (int i = 0; i < rowSamples; ++i)
                sums[static_cast<std::size_t>(i)] += source[y * line + i];
        for (int y = 0; y < height; ++y) {
            std::uint8_t* out = target + y * line;
            const int entering = y + radius + 1;
            const int leaving = y - radius;
            const std::uint8_t* incoming = entering < height ? source + entering * line : nullptr;
            const std::uint8_t* outgoing = leaving >= 0 ? source + leaving * line : nullptr;
            for (int i = 0; i < rowSamples; ++i) {
                std::uint32_t& sum = sums[static_cast<std::size_t>(i)];
                out[i] = average(sum, r);
                if (incoming) sum += incoming[i];
                if (outgoing) sum -= outgoing[i];
            }
        }
    }
};

void blurChannels(QImage& image, int channels, double sigma) {
    if (!(sigma > 0.2) || image.isNull()) return;
    const std::array<int, 3> radii = boxRadiiFor(sigma);
    BoxBlur blur{image.width(), image.height(), channels, image.bytesPerLine(), {}};
    std::vector<std::uint8_t> spare(static_cast<std::size_t>(image.sizeInBytes()));
    std::uint8_t* bits = image.bits();
    for (const int radius : radii) {
        if (radius <= 0) continue;
        blur.horizontal(bits, spare.data(), radius);
        blur.vertical(spare.data(), bits, radius);
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
    // A wide blur loses nothing at half resolution and costs a quarter; the caller draws the
    // result stretched over the layer's area.
    if (sigma >= 3.0 && alpha.width() > 8 && alpha.height() > 8) {
        alpha = alpha
                    .scaled(alpha.width() / 2, alpha.height() / 2, Qt::IgnoreAspectRatio,
                            Qt::SmoothTransformation)
                    .convertToFormat(QImage::Format_Alpha8);
        sigma /= 2.0;
    }
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
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(layer.area.translated(shadow.offset), cast);
    painter.restore();
    painter.drawImage(layer.area, layer.image);
}

void drawWithGlow(QPainter& painter, const QRectF& bounds, const QColor& colour, double radius,
                  const LayerContent& content) {
    drawWithShadow(painter, bounds, {colour, radius, QPointF()}, content);
}

void drawBlurred(QPainter& painter, const QRectF& bounds, double radius,
                 const LayerContent& content) {
    Offscreen layer = renderLayer(painter, bounds, radius * 1.5 + 1.0, content);
    double sigma = radius / 2.0 * pixelScale(painter);
    // As for shadows: a wide blur is done at half resolution and stretched back.
    if (sigma >= 3.0 && layer.image.width() > 8 && layer.image.height() > 8) {
        layer.image = layer.image.scaled(layer.image.width() / 2, layer.image.height() / 2,
                                         Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        sigma /= 2.0;
    }
    blurImage(layer.image, sigma);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(layer.area, layer.image);
    painter.restore();
}

}  // namespace corvanel::meters
