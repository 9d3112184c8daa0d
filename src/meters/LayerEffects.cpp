#include "meters/LayerEffects.h"

#include <QPaintDevice>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <deque>
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
    std::vector<std::uint32_t>& sums;

    // 32-bit fixed point keeps the inner loops vectorisable: a sum is at most 255 * (2r + 1),
    // so sum * (2^24 / (2r + 1)) stays below 2^32.
    static std::uint32_t reciprocal(int radius) {
        return (std::uint32_t{1} << 24) / static_cast<std::uint32_t>(2 * radius + 1);
    }
    static std::uint8_t average(std::uint32_t sum, std::uint32_t reciprocal) {
        return static_cast<std::uint8_t>((sum * reciprocal + (std::uint32_t{1} << 23)) >> 24);
    }

    void horizontal(const std::uint8_t* source, std::uint8_t* target, int radius) {
        const std::uint32_t r = reciprocal(radius);
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
        const std::uint32_t r = reciprocal(radius);
        const int rowSamples = width * channels;
        sums.assign(static_cast<std::size_t>(rowSamples), 0);
        for (int y = 0; y <= std::min(radius, height - 1); ++y)
            for (int i = 0; i < rowSamples; ++i)
                sums[static_cast<std::size_t>(i)] += source[y * line + i];
        for (int y = 0; y < height; ++y) {
            std::uint8_t* out = target + y * line;
            const int entering = y + radius + 1;
            const int leaving = y - radius;
            std::uint32_t* sum = sums.data();
            for (int i = 0; i < rowSamples; ++i)
                out[i] = average(sum[i], r);
            if (entering < height) {
                const std::uint8_t* incoming = source + entering * line;
                for (int i = 0; i < rowSamples; ++i)
                    sum[i] += incoming[i];
            }
            if (leaving >= 0) {
                const std::uint8_t* outgoing = source + leaving * line;
                for (int i = 0; i < rowSamples; ++i)
                    sum[i] -= outgoing[i];
            }
        }
    }
};

// Scratch memory kept per thread between frames, so a steady stream of frames allocates nothing.
std::vector<std::uint8_t>& blurSpare() {
    thread_local std::vector<std::uint8_t> spare;
    return spare;
}

std::vector<std::uint32_t>& blurSums() {
    thread_local std::vector<std::uint32_t> sums;
    return sums;
}

void blurChannels(QImage& image, int channels, double sigma) {
    if (!(sigma > 0.2) || image.isNull()) return;
    const std::array<int, 3> radii = boxRadiiFor(sigma);
    std::vector<std::uint32_t>& sums = blurSums();
    BoxBlur blur{image.width(), image.height(), channels, image.bytesPerLine(), sums};
    std::vector<std::uint8_t>& spare = blurSpare();
    spare.resize(static_cast<std::size_t>(image.sizeInBytes()));
    std::uint8_t* bits = image.bits();
    for (const int radius : radii) {
        if (radius <= 0) continue;
        blur.horizontal(bits, spare.data(), radius);
        blur.vertical(spare.data(), bits, radius);
    }
}

// How much a blur of `sigma` pixels lets its layer shrink first: a wide Gaussian holds no detail
// finer than a few pixels, so blurring a half- or quarter-size copy and stretching it back looks
// the same and costs a quarter or a sixteenth.
int reductionFor(double sigma, const QSize& size) {
    if (sigma >= 4.0 && size.width() > 16 && size.height() > 16) return 4;
    if (sigma >= 3.0 && size.width() > 8 && size.height() > 8) return 2;
    return 1;
}

// Resizes `image` to `size` and `format` only when it differs, then clears it.
void reuse(QImage& image, const QSize& size, QImage::Format format) {
    if (image.size() != size || image.format() != format) image = QImage(size, format);
    image.fill(0);
}

// `target` becomes `source` shrunk by `factor`, each pixel the mean of a factor x factor block
// (pixels past the edge count as transparent). With `alphaOnly` the target is Format_Alpha8 and
// keeps only coverage; otherwise it stays premultiplied ARGB.
void shrink(const QImage& source, int factor, bool alphaOnly, QImage& target) {
    const QSize size((source.width() + factor - 1) / factor,
                     (source.height() + factor - 1) / factor);
    reuse(target, size, alphaOnly ? QImage::Format_Alpha8 : QImage::Format_ARGB32_Premultiplied);
    const int area = factor * factor;
    const int channels = alphaOnly ? 1 : 4;
    const int columns = source.width();
    const int rows = source.height();
    std::vector<std::uint32_t>& sums = blurSums();
    for (int ty = 0; ty < size.height(); ++ty) {
        sums.assign(static_cast<std::size_t>(size.width() * channels), 0);
        const int lastRow = std::min(rows, (ty + 1) * factor);
        for (int sy = ty * factor; sy < lastRow; ++sy) {
            const auto* in = reinterpret_cast<const QRgb*>(source.constScanLine(sy));
            for (int sx = 0; sx < columns; ++sx) {
                const QRgb pixel = in[sx];
                std::uint32_t* sum = &sums[static_cast<std::size_t>(sx / factor * channels)];
                if (alphaOnly) {
                    sum[0] += static_cast<std::uint32_t>(qAlpha(pixel));
                } else {
                    sum[0] += static_cast<std::uint32_t>(qRed(pixel));
                    sum[1] += static_cast<std::uint32_t>(qGreen(pixel));
                    sum[2] += static_cast<std::uint32_t>(qBlue(pixel));
                    sum[3] += static_cast<std::uint32_t>(qAlpha(pixel));
                }
            }
        }
        const auto mean = [&](std::size_t i) {
            return static_cast<int>((sums[i] + static_cast<std::uint32_t>(area / 2)) /
                                    static_cast<std::uint32_t>(area));
        };
        if (alphaOnly) {
            std::uint8_t* out = target.scanLine(ty);
            for (int tx = 0; tx < size.width(); ++tx)
                out[tx] = static_cast<std::uint8_t>(mean(static_cast<std::size_t>(tx)));
        } else {
            auto* out = reinterpret_cast<QRgb*>(target.scanLine(ty));
            for (int tx = 0; tx < size.width(); ++tx) {
                const auto i = static_cast<std::size_t>(tx * 4);
                out[tx] = qRgba(mean(i), mean(i + 1), mean(i + 2), mean(i + 3));
            }
        }
    }
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
    QImage reduced;
    QImage shadow;
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

// Renders `content` into `image`, a transparent image covering `bounds` grown by `margin` points;
// returns that area in the painter's coordinates.
QRectF renderLayer(const QPainter& painter, const QRectF& bounds, double margin,
                   const LayerContent& content, QImage& image) {
    const double scale = pixelScale(painter);
    const QRectF area = bounds.adjusted(-margin, -margin, margin, margin);
    const QSize pixels(std::max(1, static_cast<int>(std::ceil(area.width() * scale))),
                       std::max(1, static_cast<int>(std::ceil(area.height() * scale))));
    reuse(image, pixels, QImage::Format_ARGB32_Premultiplied);
    QPainter layer(&image);
    layer.setRenderHints(painter.renderHints());
    layer.scale(scale, scale);
    layer.translate(-area.topLeft());
    content(layer);
    layer.end();
    return area;
}

// Where a copy of a layer image covering `area` goes once shrunk by `factor`: the shrunk image
// covers whole blocks, so it may reach up to a block past the layer's own edge.
QRectF reducedArea(const QRectF& area, const QSize& layer, int factor) {
    const int columns = (layer.width() + factor - 1) / factor * factor;
    const int rows = (layer.height() + factor - 1) / factor * factor;
    return QRectF(area.topLeft(), QSizeF(area.width() * columns / layer.width(),
                                         area.height() * rows / layer.height()));
}

// The shadow of `layer` into `scratch.shadow`, at the reduction its width allows.
void castShadow(const QImage& layer, const QColor& colour, double sigma, ScratchSet& scratch) {
    const int factor = reductionFor(sigma, layer.size());
    if (factor > 1)
        shrink(layer, factor, true, scratch.alpha);
    else
        coverageOf(layer, scratch.alpha);
    blurAlpha(scratch.alpha, sigma / factor);
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

void blurAlpha(QImage& alpha, double sigma) {
    blurChannels(alpha, 1, sigma);
}

void blurImage(QImage& image, double sigma) {
    blurChannels(image, 4, sigma);
}

void drawWithShadow(QPainter& painter, const QRectF& bounds, const Shadow& shadow,
                    const LayerContent& content) {
    Scratch scratch;
    ScratchSet& images = scratch.set();
    const double margin = shadow.radius * 1.5 + 1.0;
    const QRectF area = renderLayer(painter, bounds, margin, content, images.layer);
    const double sigma = shadow.radius / 2.0 * pixelScale(painter);
    castShadow(images.layer, shadow.colour, sigma, images);
    const int factor = reductionFor(sigma, images.layer.size());
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(reducedArea(area, images.layer.size(), factor).translated(shadow.offset),
                      images.shadow);
    painter.restore();
    painter.drawImage(area, images.layer);
}

void drawWithGlow(QPainter& painter, const QRectF& bounds, const QColor& colour, double radius,
                  const LayerContent& content) {
    drawWithShadow(painter, bounds, {colour, radius, QPointF()}, content);
}

void drawBlurred(QPainter& painter, const QRectF& bounds, double radius,
                 const LayerContent& content) {
    Scratch scratch;
    ScratchSet& images = scratch.set();
    const QRectF area = renderLayer(painter, bounds, radius * 1.5 + 1.0, content, images.layer);
    const double sigma = radius / 2.0 * pixelScale(painter);
    const int factor = reductionFor(sigma, images.layer.size());
    QImage* blurred = &images.layer;
    if (factor > 1) {
        shrink(images.layer, factor, false, images.reduced);
        blurred = &images.reduced;
    }
    blurImage(*blurred, sigma / factor);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(reducedArea(area, images.layer.size(), factor), *blurred);
    painter.restore();
}

}  // namespace corvanel::meters
