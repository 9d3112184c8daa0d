#include "meters/kit/BoxBlur.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
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

// The passes along each axis: up to three boxes, then a three-tap pass [w, 1 - 2w, w] for the
// variance whole box widths fall short of (it matters for small sigmas, where a single box of
// width 3 is already too wide). `tapWeight` is w in 1/256.
struct BlurPlan {
    std::array<int, 3> radii;
    int tapWeight;
};

BlurPlan planFor(double sigma) {
    BlurPlan plan{boxRadiiFor(sigma), 0};
    double variance = sigma * sigma;
    for (const int r : plan.radii)
        variance -= r * (r + 1) / 3.0;  // a box of 2r + 1 samples
    // One tap pass carries a variance of up to 2/3.
    plan.tapWeight = static_cast<int>(std::lround(std::clamp(variance / 2.0, 0.0, 1.0 / 3) * 256));
    return plan;
}

// `rows` rows of `samples` bytes, `line` bytes apart.
struct Plane {
    std::uint8_t* bits;
    int samples;
    int rows;
    std::ptrdiff_t line;

    std::uint8_t* row(int y) const { return bits + y * line; }
};

// The row loops below take restrict-qualified pointers so that they compile to vector code.
void addRow(std::int32_t* __restrict sums, const std::uint8_t* __restrict row, int samples) {
    for (int i = 0; i < samples; ++i)
        sums[i] += row[i];
}

void subtractRow(std::int32_t* __restrict sums, const std::uint8_t* __restrict row, int samples) {
    for (int i = 0; i < samples; ++i)
        sums[i] -= row[i];
}

void slideRows(std::int32_t* __restrict sums, const std::uint8_t* __restrict entering,
               const std::uint8_t* __restrict leaving, int samples) {
    for (int i = 0; i < samples; ++i)
        sums[i] += entering[i] - leaving[i];
}

void averageRow(const std::int32_t* __restrict sums, std::uint8_t* __restrict out, int samples,
                float inverseWidth) {
    for (int i = 0; i < samples; ++i)
        out[i] = static_cast<std::uint8_t>(
            static_cast<std::int32_t>(static_cast<float>(sums[i]) * inverseWidth + 0.5f));
}

// One box pass down the columns of `source` into `target` (same shape). Every column keeps a
// running sum, so a row costs one add and one subtract per sample whatever the radius.
void boxDown(const Plane& source, const Plane& target, int radius, std::int32_t* sums) {
    const int samples = source.samples;
    const float inverseWidth = 1.0f / static_cast<float>(2 * radius + 1);
    std::fill(sums, sums + samples, 0);
    for (int y = 0; y <= std::min(radius, source.rows - 1); ++y)
        addRow(sums, source.row(y), samples);
    for (int y = 0; y < source.rows; ++y) {
        averageRow(sums, target.row(y), samples, inverseWidth);
        const int entering = y + radius + 1;
        const int leaving = y - radius;
        if (entering < source.rows && leaving >= 0)
            slideRows(sums, source.row(entering), source.row(leaving), samples);
        else if (entering < source.rows)
            addRow(sums, source.row(entering), samples);
        else if (leaving >= 0)
            subtractRow(sums, source.row(leaving), samples);
    }
}

void tapRow(const std::uint8_t* __restrict above, const std::uint8_t* __restrict middle,
            const std::uint8_t* __restrict below, std::uint8_t* __restrict out, int samples,
            int weight) {
    const int centre = 256 - 2 * weight;
    for (int i = 0; i < samples; ++i)
        out[i] = static_cast<std::uint8_t>(
            (weight * (above[i] + below[i]) + centre * middle[i] + 128) >> 8);
}

// The three-tap pass down the columns of `source` into `target`; `zeros` is a row of nothing,
// for above the first row and below the last.
void tapsDown(const Plane& source, const Plane& target, int weight, const std::uint8_t* zeros) {
    for (int y = 0; y < source.rows; ++y)
        tapRow(y > 0 ? source.row(y - 1) : zeros, source.row(y),
               y + 1 < source.rows ? source.row(y + 1) : zeros, target.row(y), source.samples,
               weight);
}

// `target` becomes `source` mirrored about its diagonal, in tiles that stay in the cache.
template <typename Pixel>
void transpose(const Plane& source, const Plane& target) {
    constexpr int tile = 16;
    const int columns = source.samples / static_cast<int>(sizeof(Pixel));
    for (int y0 = 0; y0 < source.rows; y0 += tile) {
        const int y1 = std::min(y0 + tile, source.rows);
        for (int x0 = 0; x0 < columns; x0 += tile) {
            const int x1 = std::min(x0 + tile, columns);
            for (int y = y0; y < y1; ++y) {
                const auto* in = reinterpret_cast<const Pixel*>(source.row(y));
                for (int x = x0; x < x1; ++x)
                    reinterpret_cast<Pixel*>(target.row(x))[y] = in[x];
            }
        }
    }
}

// Scratch memory kept per thread between frames, so a steady stream of frames allocates
// nothing. Words keep every row aligned for whole-pixel access.
struct BlurScratch {
    std::vector<std::int32_t> sums;
    std::vector<std::uint8_t> zeros;
    std::vector<std::uint32_t> spare;
    std::vector<std::uint32_t> turned;
    std::vector<std::uint32_t> turnedSpare;
};

BlurScratch& blurScratch() {
    thread_local BlurScratch scratch;
    return scratch;
}

std::uint8_t* bytes(std::vector<std::uint32_t>& words, std::size_t count) {
    words.resize((count + 3) / 4);
    return reinterpret_cast<std::uint8_t*>(words.data());
}

// The plan's passes along one axis, alternating between `plane` and `spare`; returns where the
// result ended up.
const Plane& axisPasses(const BlurPlan& plan, const Plane& plane, const Plane& spare,
                        BlurScratch& scratch) {
    scratch.sums.resize(static_cast<std::size_t>(plane.samples));
    const Plane* from = &plane;
    const Plane* to = &spare;
    for (const int radius : plan.radii) {
        if (radius <= 0) continue;
        boxDown(*from, *to, radius, scratch.sums.data());
        std::swap(from, to);
    }
    if (plan.tapWeight > 0) {
        scratch.zeros.assign(static_cast<std::size_t>(plane.samples), 0);
        tapsDown(*from, *to, plan.tapWeight, scratch.zeros.data());
        std::swap(from, to);
    }
    return *from;
}

// Pixel is the unit a transpose moves: one byte of coverage or one ARGB word.
template <typename Pixel>
void blurPixels(QImage& image, double sigma) {
    if (!(sigma > 0.2) || image.isNull()) return;
    const BlurPlan plan = planFor(sigma);
    BlurScratch& scratch = blurScratch();
    constexpr int size = static_cast<int>(sizeof(Pixel));
    const int width = image.width();
    const int height = image.height();
    const std::ptrdiff_t line = image.bytesPerLine();

    // Vertical passes run along whole rows; the horizontal ones run the same code on a
    // transposed copy, then it is turned back.
    const Plane upright{image.bits(), width * size, height, line};
    const Plane uprightSpare{bytes(scratch.spare, static_cast<std::size_t>(image.sizeInBytes())),
                             width * size, height, line};
    const Plane& down = axisPasses(plan, upright, uprightSpare, scratch);

    const std::size_t turnedBytes = static_cast<std::size_t>(width) * height * size;
    const Plane turned{bytes(scratch.turned, turnedBytes), height * size, width, height * size};
    const Plane turnedSpare{bytes(scratch.turnedSpare, turnedBytes), height * size, width,
                            height * size};
    transpose<Pixel>(down, turned);
    transpose<Pixel>(axisPasses(plan, turned, turnedSpare, scratch), upright);
}

}  // namespace

void blurAlpha(QImage& alpha, double sigma) {
    blurPixels<std::uint8_t>(alpha, sigma);
}

void blurImage(QImage& image, double sigma) {
    blurPixels<std::uint32_t>(image, sigma);
}

}  // namespace corvanel::meters
