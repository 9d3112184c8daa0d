// The drawing kit: noise, springs, continuous corners, blur and shadow, text placement, cached
// layers.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include "Probe.h"
#include "meters/kit/BoxBlur.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/LayerEffects.h"
#include "meters/kit/Noise.h"
#include "meters/kit/Spring.h"
#include "meters/kit/StaticLayer.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"

namespace corvanel::meters {
namespace {

TEST(Noise, MatchesTheHashWorkedOutByHand) {
    // Reference values computed independently with arbitrary-precision integers and masking.
    EXPECT_NEAR(noise(0, 0), 0.067, 1e-9);
    EXPECT_NEAR(noise(1, 2), 0.980, 1e-9);
    EXPECT_NEAR(noise(-5, 7), 0.884, 1e-9);
    EXPECT_NEAR(
        noise(std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()),
        -0.566, 1e-9);
}

TEST(Noise, StaysInRangeOnThousandthStepsAndSpreadsOverIt) {
    std::set<long> seen;
    double sum = 0;
    for (std::int64_t a = -50; a < 50; ++a) {
        for (std::int64_t b = 0; b < 40; ++b) {
            const double v = noise(a, b);
            ASSERT_GE(v, -1.0);
            ASSERT_LE(v, 1.0);
            const double thousandths = (v + 1.0) * 1000.0;
            ASSERT_NEAR(thousandths, std::round(thousandths), 1e-6);
            EXPECT_EQ(v, noise(a, b));
            seen.insert(std::lround(thousandths));
            sum += v;
        }
    }
    EXPECT_GT(seen.size(), 1500u);
    EXPECT_NEAR(sum / 4000.0, 0.0, 0.05);
}

TEST(Spring, UnderDampedOvershootsThenSettlesOnTarget) {
    Spring spring(0.32, 0.4);
    spring.setTarget(1.0);
    double highest = 0;
    double t = 0;
    for (; t < 0.3; t += 1.0 / 60) {
        spring.step(1.0 / 60);
        highest = std::max(highest, spring.value());
    }
    EXPECT_GT(highest, 1.1);  // a damping fraction of 0.4 overshoots by about a quarter
    EXPECT_LT(highest, 1.4);
    for (; t < 1.5; t += 1.0 / 60)
        spring.step(1.0 / 60);
    EXPECT_NEAR(spring.value(), 1.0, 0.01);
    for (int i = 0; i < 120; ++i)
        spring.step(1.0 / 60);
    EXPECT_TRUE(spring.isSettled());
    EXPECT_EQ(spring.value(), 1.0);
}

TEST(Spring, CriticallyDampedNeverOvershoots) {
    Spring spring(0.3, 1.0);
    spring.setTarget(1.0);
    for (int i = 0; i < 200; ++i) {
        spring.step(1.0 / 120);
        ASSERT_LE(spring.value(), 1.0 + 1e-9);
    }
}

TEST(Spring, RetargetingMidSwingKeepsPositionAndVelocity) {
    Spring spring(0.32, 0.4);
    spring.setTarget(1.0);
    for (int i = 0; i < 6; ++i)
        spring.step(1.0 / 60);
    const double position = spring.value();
    const double velocity = spring.velocity();
    ASSERT_GT(velocity, 0.0);
    spring.setTarget(0.2);
    EXPECT_EQ(spring.value(), position);
    EXPECT_EQ(spring.velocity(), velocity);
    // It keeps going up for a moment before turning back towards the new target.
    spring.step(1.0 / 240);
    EXPECT_GT(spring.value(), position);
    for (int i = 0; i < 120; ++i)
        spring.step(1.0 / 60);
    EXPECT_NEAR(spring.value(), 0.2, 0.005);
}

TEST(Spring, SameMotionWhateverTheFrameRate) {
    Spring coarse(0.32, 0.4);
    Spring fine(0.32, 0.4);
    coarse.setTarget(1.0);
    fine.setTarget(1.0);
    for (int i = 0; i < 3; ++i)
        coarse.step(0.05);
    for (int i = 0; i < 15; ++i)
        fine.step(0.01);
    EXPECT_NEAR(coarse.value(), fine.value(), 0.01);
}

TEST(ContinuousRect, CornersCurveEarlierThanCircularOnesButTheEdgesStayStraight) {
    const QRectF box(0, 0, 100, 60);
    const QPainterPath squircle = continuousRoundedRect(box, 10);
    QPainterPath circular;
    circular.addRoundedRect(box, 10, 10);
    EXPECT_FALSE(squircle.contains(QPointF(0.5, 0.5)));
    EXPECT_TRUE(squircle.contains(QPointF(50, 0.2)));  // top edge, mid-way
    EXPECT_TRUE(squircle.contains(QPointF(0.2, 30)));  // left edge, mid-way
    EXPECT_TRUE(squircle.contains(box.center()));
    // Just past where a circular corner starts, the continuous one has already left the edge.
    EXPECT_TRUE(circular.contains(QPointF(8.4, 0.25)));
    EXPECT_FALSE(squircle.contains(QPointF(8.4, 0.25)));
    EXPECT_NEAR(squircle.boundingRect().width(), 100, 1e-9);
    EXPECT_NEAR(squircle.boundingRect().height(), 60, 1e-9);
}

TEST(ContinuousRect, RadiusLargerThanTheBoxStaysInsideIt) {
    const QPainterPath path = continuousRoundedRect(QRectF(10, 10, 8, 30), 50);
    EXPECT_TRUE(path.contains(QPointF(14, 25)));
    EXPECT_TRUE(
        QRectF(10, 10, 8, 30).adjusted(-1e-9, -1e-9, 1e-9, 1e-9).contains(path.boundingRect()));
}

TEST(LayerEffects, BlurSpreadsALineLikeAGaussian) {
    // A whole line rather than a point, so the tails stand well above the 8-bit floor.
    for (const double sigma : {0.5, 1.0, 1.5, 4.0, 9.0}) {
        QImage image(81, 21, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        for (int y = 0; y < 21; ++y)
            image.setPixelColor(40, y, Qt::white);
        blurImage(image, sigma);
        double total = 0, spread = 0;
        for (int x = 0; x < 81; ++x) {
            const double a = image.pixelColor(x, 10).alphaF();
            total += a;
            spread += a * (x - 40) * (x - 40);
        }
        EXPECT_NEAR(std::sqrt(spread / total), sigma, 0.05 * sigma + 0.05) << sigma;
        EXPECT_EQ(image.pixelColor(35, 10).alpha(), image.pixelColor(45, 10).alpha()) << sigma;
    }
}

TEST(LayerEffects, CoverageBlurKeepsItsMassAndShapeOnOddSizedImages) {
    // 37 columns leave padding at the end of every Alpha8 row; the point sits off-centre so a
    // transposition mix-up would move or stretch it.
    QImage alpha(37, 23, QImage::Format_Alpha8);
    alpha.fill(0);
    alpha.scanLine(9)[14] = 255;
    QImage argb(37, 23, QImage::Format_ARGB32_Premultiplied);
    argb.fill(Qt::transparent);
    argb.setPixelColor(14, 9, Qt::white);
    blurAlpha(alpha, 2.0);
    blurImage(argb, 2.0);

    int total = 0, brightestX = 0, brightestY = 0;
    for (int y = 0; y < 23; ++y) {
        for (int x = 0; x < 37; ++x) {
            const int a = alpha.constScanLine(y)[x];
            total += a;
            if (a > alpha.constScanLine(brightestY)[brightestX]) brightestX = x, brightestY = y;
            ASSERT_EQ(a, argb.pixelColor(x, y).alpha()) << x << "," << y;
        }
    }
    EXPECT_EQ(brightestX, 14);
    EXPECT_EQ(brightestY, 9);
    EXPECT_NEAR(total, 255, 20);  // rounding each pass loses or gains a little
    EXPECT_EQ(alpha.constScanLine(9)[11], alpha.constScanLine(9)[17]);
    EXPECT_EQ(alpha.constScanLine(6)[14], alpha.constScanLine(12)[14]);
}

TEST(LayerEffects, WideShadowsBlurredAtReducedSizeSpreadLikeFullSizeOnes) {
    // A one-pixel line casting a shadow of radius r spreads like a Gaussian of r / 2 across it:
    // sigma 1 is blurred at full size, 1.5 and 2.5 at half size and 5 at quarter size. The
    // shadow falls well below the line, where it is measured; reduced copies may move it by up
    // to half a block.
    for (const double sigma : {1.0, 1.5, 2.5, 5.0}) {
        const QRectF line(40, 5, 1, 20);
        const QImage image = probe::render({81, 81}, [&](QPainter& p) {
            drawWithShadow(p, line, {Qt::black, 2 * sigma, {0, 40}},
                           [&](QPainter& layer) { layer.fillRect(line, Qt::white); });
        });
        double total = 0, mean = 0, spread = 0;
        for (int x = 0; x < 81; ++x) {
            const double a = image.pixelColor(x, 55).alphaF();
            total += a;
            mean += a * x;
            spread += a * x * x;
        }
        mean /= total;
        const double deviation = std::sqrt(spread / total - mean * mean);
        const double tolerance = sigma < 1.5 ? 0.1 : (sigma < 4 ? 0.8 : 1.7);
        EXPECT_NEAR(mean, 40, tolerance) << sigma;
        // The line's own width adds a twelfth of a pixel squared.
        EXPECT_NEAR(deviation, std::sqrt(sigma * sigma + 1.0 / 12), 0.1 * sigma) << sigma;
    }
}

TEST(LayerEffects, ShadowFallsAtItsOffsetAndTheLayerStaysOnTop) {
    const QImage image = probe::render({60, 60}, [](QPainter& p) {
        drawWithShadow(p, QRectF(20, 20, 20, 20), {QColor(0, 0, 0, 200), 3, {0, 6}},
                       [](QPainter& layer) { layer.fillRect(QRectF(20, 20, 20, 20), Qt::red); });
    });
    EXPECT_TRUE(probe::near(probe::at(image, {30, 30}), Qt::red, 2));
    EXPECT_GT(probe::at(image, {30, 43}).alpha(), 60);  // below: the offset shadow
    EXPECT_LT(probe::at(image, {30, 17}).alpha(), probe::at(image, {30, 43}).alpha() / 3);
}

TEST(LayerEffects, GlowSurroundsEvenly) {
    const QImage image = probe::render({60, 60}, [](QPainter& p) {
        drawWithGlow(p, QRectF(25, 25, 10, 10), Qt::cyan, 6,
                     [](QPainter& layer) { layer.fillRect(QRectF(25, 25, 10, 10), Qt::white); });
    });
    const int above = probe::at(image, {30, 22}).alpha();
    EXPECT_GT(above, 20);
    EXPECT_NEAR(above, probe::at(image, {30, 37}).alpha(), 3);  // rows 25 to 34 are lit
    EXPECT_NEAR(above, probe::at(image, {22, 30}).alpha(), 3);
}

// Horizontal extent of the inked pixels of an image, in pixels.
std::pair<int, int> inkColumns(const QImage& image) {
    int first = image.width(), last = -1;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y).alpha() > 60) {
                first = std::min(first, x);
                last = std::max(last, x);
            }
    return {first, last};
}

TEST(TextPlacement, RightAnchorPutsTheTextsEndOnThePoint) {
    const TextStyle style{systemFont(12, FontWeight::medium), Qt::black};
    const QImage image = probe::render({120, 30}, [&](QPainter& p) {
        drawText(p, QStringLiteral("-40"), style, {80, 15}, HorizontalAnchor::right);
    });
    const auto [first, last] = inkColumns(image);
    EXPECT_LE(last, 80);
    EXPECT_GE(last, 76);
    EXPECT_NEAR(first, 80 - textWidth(QStringLiteral("-40"), style), 3);
}

TEST(TextPlacement, CentredTextIsCentredBothWays) {
    const TextStyle style{systemFont(10, FontWeight::semibold), Qt::black};
    const QImage image = probe::render({100, 40}, [&](QPainter& p) {
        drawText(p, QStringLiteral("HH"), style, {50, 20});
    });
    const auto [first, last] = inkColumns(image);
    EXPECT_NEAR((first + last) / 2.0, 50, 1.5);
    int top = 40, bottom = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 100; ++x)
            if (image.pixelColor(x, y).alpha() > 60) {
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    // Capital letters sit a little above the line box's centre (room for descenders below).
    EXPECT_NEAR((top + bottom) / 2.0, 20, 2.5);
}

TEST(TextPlacement, FixedWidthDigitsMakeEveryNumberOfEqualLengthEquallyWide) {
    const TextStyle proportional{systemFont(13, FontWeight::medium), Qt::black};
    TextStyle fixed = proportional;
    fixed.fixedWidthDigits = true;
    EXPECT_DOUBLE_EQ(textWidth(QStringLiteral("44.1 kHz"), fixed),
                     textWidth(QStringLiteral("11.1 kHz"), fixed));
    EXPECT_GE(textWidth(QStringLiteral("11.1 kHz"), fixed),
              textWidth(QStringLiteral("11.1 kHz"), proportional));
}

TEST(StaticLayer, RepaintsOnlyWhenSizeOrPixelScaleChanges) {
    StaticLayer layer(4.0);
    int paints = 0;
    const auto paint = [&](QPainter& p, const QSizeF& size) {
        ++paints;
        p.fillRect(QRectF(QPointF(), size), Qt::blue);
    };
    auto drawAt = [&](QSizeF size, double scale) {
        probe::render(
            size, [&](QPainter& p) { layer.draw(p, size, paint); }, scale);
    };
    drawAt({50, 40}, 1);
    drawAt({50, 40}, 1);
    EXPECT_EQ(paints, 1);
    drawAt({60, 40}, 1);
    EXPECT_EQ(paints, 2);
    drawAt({60, 40}, 2);
    EXPECT_EQ(paints, 3);
    layer.invalidate();
    drawAt({60, 40}, 2);
    EXPECT_EQ(paints, 4);
    EXPECT_EQ(layer.image().width(), (60 + 8) * 2);
}

}  // namespace
}  // namespace corvanel::meters
