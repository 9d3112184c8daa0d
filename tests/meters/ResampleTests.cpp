// Whole-factor shrinking and stretching of layer images, against straightforward references.
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <QImage>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "meters/kit/Resample.h"

namespace corvanel::meters {
namespace {

// A premultiplied image of random colours and coverages, the same on every run.
QImage randomLayer(int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> level(0, 255);
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int a = level(random);
            image.setPixel(x, y,
                           qRgba(level(random) * a / 255, level(random) * a / 255,
                                 level(random) * a / 255, a));
        }
    return image;
}

// Channel `shift` of `image` at (x, y), its edge pixels repeated beyond it.
double heldChannel(const QImage& image, int x, int y, int shift) {
    x = std::clamp(x, 0, image.width() - 1);
    y = std::clamp(y, 0, image.height() - 1);
    return (image.pixel(x, y) >> shift) & 0xff;
}

// Bilinear interpolation of `image` at the point of its pixel grid that pixel (x, y) of a copy
// `factor` times larger has its centre on.
double bilinear(const QImage& image, int factor, int x, int y, int shift) {
    const double u = (x + 0.5) / factor - 0.5;
    const double v = (y + 0.5) / factor - 0.5;
    const int left = static_cast<int>(std::floor(u));
    const int top = static_cast<int>(std::floor(v));
    const double fu = u - left, fv = v - top;
    const auto row = [&](int r) {
        return heldChannel(image, left, r, shift) * (1 - fu) +
               heldChannel(image, left + 1, r, shift) * fu;
    };
    return row(top) * (1 - fv) + row(top + 1) * fv;
}

TEST(Enlarge, InterpolatesBetweenPixelCentresWithEdgesHeld) {
    // Odd sizes, so no row or column lines up with a vector's width.
    const QImage reduced = randomLayer(13, 7, 11);
    for (const int factor : {2, 4}) {
        QImage enlarged;
        enlarge(reduced, factor, enlarged);
        ASSERT_EQ(enlarged.size(), reduced.size() * factor);
        double worst = 0, bias = 0;
        for (int y = 0; y < enlarged.height(); ++y)
            for (int x = 0; x < enlarged.width(); ++x)
                for (const int shift : {0, 8, 16, 24}) {
                    const double error = ((enlarged.pixel(x, y) >> shift) & 0xff) -
                                         bilinear(reduced, factor, x, y, shift);
                    worst = std::max(worst, std::abs(error));
                    bias += error;
                }
        EXPECT_LE(worst, 2.0) << factor;
        // Each rounded mean rounds up, by half a level at most and a quarter on average.
        EXPECT_LT(bias / (enlarged.width() * enlarged.height() * 4), 1.0) << factor;
    }
}

TEST(Enlarge, KeepsFlatAreasExactAndEveryPixelPremultiplied) {
    QImage flat(9, 5, QImage::Format_ARGB32_Premultiplied);
    flat.fill(qRgba(40, 90, 10, 120));
    QImage enlarged;
    enlarge(flat, 4, enlarged);
    for (int y = 0; y < enlarged.height(); ++y)
        for (int x = 0; x < enlarged.width(); ++x)
            ASSERT_EQ(enlarged.pixel(x, y), flat.pixel(0, 0)) << x << "," << y;

    // A colour channel above its pixel's coverage would blend brighter than white.
    enlarge(randomLayer(17, 11, 5), 2, enlarged);
    for (int y = 0; y < enlarged.height(); ++y)
        for (int x = 0; x < enlarged.width(); ++x) {
            const QRgb p = enlarged.pixel(x, y);
            ASSERT_LE(std::max({qRed(p), qGreen(p), qBlue(p)}), qAlpha(p)) << x << "," << y;
        }
}

TEST(ShrinkCoverage, AveragesBlocksAndCountsPixelsPastTheEdgeAsClear) {
    QImage opaque(5, 5, QImage::Format_ARGB32_Premultiplied);
    opaque.fill(Qt::white);
    QImage coverage;
    shrinkCoverage(opaque, 2, coverage);
    ASSERT_EQ(coverage.size(), QSize(3, 3));
    ASSERT_EQ(coverage.format(), QImage::Format_Alpha8);
    EXPECT_EQ(coverage.constScanLine(0)[0], 255);
    EXPECT_EQ(coverage.constScanLine(1)[2], 128);  // half its block lies past the right edge
    EXPECT_EQ(coverage.constScanLine(2)[1], 128);  // and past the bottom
    EXPECT_EQ(coverage.constScanLine(2)[2], 64);   // a quarter in the corner

    const QImage layer = randomLayer(23, 10, 3);
    for (const int factor : {2, 4}) {
        shrinkCoverage(layer, factor, coverage);
        ASSERT_EQ(coverage.size(), QSize((23 + factor - 1) / factor, (10 + factor - 1) / factor));
        for (int ty = 0; ty < coverage.height(); ++ty)
            for (int tx = 0; tx < coverage.width(); ++tx) {
                double sum = 0;
                for (int y = ty * factor; y < std::min(10, (ty + 1) * factor); ++y)
                    for (int x = tx * factor; x < std::min(23, (tx + 1) * factor); ++x)
                        sum += qAlpha(layer.pixel(x, y));
                EXPECT_NEAR(coverage.constScanLine(ty)[tx], sum / (factor * factor), 0.5)
                    << factor << ": " << tx << "," << ty;
            }
    }
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool underSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool underSanitizer = true;
#else
constexpr bool underSanitizer = false;
#endif
#else
constexpr bool underSanitizer = false;
#endif

// The process's address space now, in bytes.
std::size_t addressSpaceInUse() {
    std::FILE* statm = std::fopen("/proc/self/statm", "r");
    unsigned long pages = 0;
    if (!statm || std::fscanf(statm, "%lu", &pages) != 1) std::abort();
    std::fclose(statm);
    return pages * 4096;
}

// Shrinks and enlarges into results that the capped address space cannot hold; exits with 0 when
// both are left null.
[[noreturn]] void resampleUnderACap() {
    QImage layer(4096, 4096, QImage::Format_ARGB32_Premultiplied);  // 64 MiB
    QImage reduced(1024, 1024, QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::white);
    reduced.fill(Qt::white);
    const rlimit cap{addressSpaceInUse() + (2u << 20), RLIM_INFINITY};
    setrlimit(RLIMIT_AS, &cap);
    QImage coverage;  // 4 MiB wanted
    shrinkCoverage(layer, 2, coverage);
    QImage enlarged;  // 64 MiB wanted
    enlarge(reduced, 4, enlarged);
    std::_Exit(coverage.isNull() && enlarged.isNull() ? 0 : 1);
}

// With no memory left for the result, both leave it null instead of writing through it; run in
// a child process whose address space is capped just above what it holds.
TEST(Resample, AResultThatCannotBeAllocatedStaysNull) {
    if (underSanitizer)
        GTEST_SKIP() << "a sanitizer's shadow memory needs more address space than the cap allows";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(resampleUnderACap(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace corvanel::meters
