// The needle meters (studio VU, tape deck, Yamaha), probed along the directions their scales
// give for a level: the needle is where the geometry says, nowhere else, and moves on a spring.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Probe.h"
#include "meters/kit/DialGeometry.h"
#include "meters/styles/TapeDeckMeterView.h"
#include "meters/styles/VUMeterView.h"
#include "meters/styles/YamahaVUMeterView.h"

namespace corvanel::meters {
namespace {

template <typename Meter>
QImage drawAtRest(Meter& meter, float level, QSizeF size) {
    meter.setLevel(level);
    meter.settle();
    return probe::render(size, [&](QPainter& p) { meter.paint(p, size); });
}

bool darkAt(const QImage& image, QPointF point) {
    return probe::brightness(probe::at(image, point)) < 110;
}

// VU: a 300 x 220 view; the dial area is 282 x 202 at (9, 9): R = 0.47 w = 132.54, pivot
// 4 points above the dial area's bottom.
constexpr QSizeF vuSize{300, 220};
const QPointF vuPivot{150, 207};
constexpr double vuRadius = 0.47 * 282;

TEST(VUMeterView, NeedlePointsAtMinus20ZeroAndPlus3ForLevels0_078And1) {
    for (const double level : {0.0, 0.78, 1.0}) {
        VUMeterView meter(QStringLiteral("L"));
        const QImage image = drawAtRest(meter, static_cast<float>(level), vuSize);
        const double direction = level * 90 - 135;
        EXPECT_TRUE(darkAt(image, polarPoint(vuPivot, 0.5 * vuRadius, direction))) << level;
        EXPECT_TRUE(darkAt(image, polarPoint(vuPivot, 0.8 * vuRadius, direction))) << level;
        // Beyond its length (0.94 R) and in the mirrored direction: the cream face.
        EXPECT_FALSE(darkAt(image, polarPoint(vuPivot, 1.0 * vuRadius + 2, direction))) << level;
        EXPECT_FALSE(darkAt(image, polarPoint(vuPivot, 0.5 * vuRadius, -180 - direction))) << level;
    }
    // At 0.78 the needle covers the red "0" tick where the red zone begins.
    VUMeterView meter(QStringLiteral("L"));
    const QImage zero = drawAtRest(meter, 0.78f, vuSize);
    const QColor onTick = probe::at(zero, polarPoint(vuPivot, 0.9 * vuRadius, -64.8));
    EXPECT_LT(onTick.red(), 110);
}

TEST(VUMeterView, OutOfRangeLevelsDrawAtTheNearestEnd) {
    const std::pair<float, double> cases[] = {
        {-0.4f, 0.0}, {std::numeric_limits<float>::quiet_NaN(), 0.0}, {3.0f, 1.0}};
    for (const auto& [level, shown] : cases) {
        VUMeterView meter(QStringLiteral("R"));
        const QImage image = drawAtRest(meter, level, vuSize);
        EXPECT_TRUE(darkAt(image, polarPoint(vuPivot, 0.6 * vuRadius, shown * 90 - 135))) << level;
    }
}

TEST(VUMeterView, TicksFromZeroVUUpAreRed) {
    VUMeterView meter(QStringLiteral("L"));
    const QImage image = drawAtRest(meter, 0.0f, vuSize);
    const auto tickColour = [&](double position) {
        return probe::at(image, polarPoint(vuPivot, 0.92 * vuRadius, position * 90 - 135));
    };
    for (const double red : {0.90, 1.00}) {
        const QColor c = tickColour(red);
        EXPECT_GT(c.red(), 200) << red;
        EXPECT_LT(c.green(), 120) << red;
    }
    // Thin minor ticks are partly covered pixels: darker than the cream face, and grey.
    for (const double dark : {0.15, 0.45, 0.67}) {
        const QColor c = tickColour(dark);
        EXPECT_LT(probe::brightness(c), 190) << dark;
        EXPECT_LT(c.red() - c.blue(), 60) << dark;
    }
}

TEST(VUMeterView, ScaleRadiusFollowsTheShorterSideAndStaysCentred) {
    // Wide and short: limited by 0.85 of the dial height (102), pivot at 9 + 102 - 4.
    VUMeterView wide(QStringLiteral("L"));
    const QImage wideImage = drawAtRest(wide, 0.5f, {600, 120});
    const double wideRadius = 0.85 * 102;
    EXPECT_TRUE(darkAt(wideImage, {300, 107 - 0.85 * wideRadius}));
    EXPECT_FALSE(darkAt(wideImage, {300, 107 - 0.97 * wideRadius}));
    // Tall and narrow: limited by 0.47 of the dial width (102).
    VUMeterView tall(QStringLiteral("L"));
    const QImage tallImage = drawAtRest(tall, 0.5f, {120, 400});
    const double tallRadius = 0.47 * 102;
    EXPECT_TRUE(darkAt(tallImage, {60, 387 - 0.85 * tallRadius}));
    EXPECT_FALSE(darkAt(tallImage, {60, 387 - 1.2 * tallRadius}));
}

TEST(VUMeterView, NeedleSwingsOnItsSpringAndOvershootsBeforeSettling) {
    VUMeterView meter(QStringLiteral("L"));
    meter.setLevel(0.0f);
    meter.settle();
    meter.setLevel(0.5f);
    const auto needleUp = [&] {
        const QImage image = probe::render(vuSize, [&](QPainter& p) { meter.paint(p, vuSize); });
        return darkAt(image, polarPoint(vuPivot, 0.7 * vuRadius, -90));
    };
    EXPECT_FALSE(needleUp());
    EXPECT_TRUE(meter.step(0.04));
    EXPECT_FALSE(needleUp());  // on its way, not there yet
    // Past the target at the height of the overshoot, then back and at rest.
    bool overshot = false;
    for (int i = 0; i < 12; ++i) {
        meter.step(1.0 / 60);
        const QImage image = probe::render(vuSize, [&](QPainter& p) { meter.paint(p, vuSize); });
        overshot = overshot || darkAt(image, polarPoint(vuPivot, 0.7 * vuRadius, -90 + 9));
    }
    EXPECT_TRUE(overshot);
    for (int i = 0; i < 120; ++i)
        meter.step(1.0 / 60);
    EXPECT_FALSE(meter.step(1.0 / 60));
    EXPECT_TRUE(needleUp());
}

// Tape deck: a 300 x 140 view; the meter area is 284 x 124 at (8, 8): R = 1.28 h, pivot
// 0.55 h below the area's bottom.
constexpr QSizeF tapeSize{300, 140};
const QPointF tapePivot{150, 8 + 1.55 * 124};
constexpr double tapeRadius = 1.28 * 124;

TEST(TapeDeckMeterView, NeedleSwings24DegreesEitherSideOfUpright) {
    for (const double level : {0.0, 0.78, 1.0}) {
        TapeDeckMeterView meter(QStringLiteral("L"));
        const QImage image = drawAtRest(meter, static_cast<float>(level), tapeSize);
        const double direction = 48 * level - 114;
        EXPECT_TRUE(darkAt(image, polarPoint(tapePivot, 0.65 * tapeRadius, direction))) << level;
        EXPECT_FALSE(darkAt(image, polarPoint(tapePivot, 0.65 * tapeRadius, -180 - direction)))
            << level;
    }
    TapeDeckMeterView clamped(QStringLiteral("R"));
    const QImage image = drawAtRest(clamped, 1.6f, tapeSize);
    EXPECT_TRUE(darkAt(image, polarPoint(tapePivot, 0.65 * tapeRadius, -66)));
}

TEST(TapeDeckMeterView, NeedleIsClippedAwayFromTheBezel) {
    TapeDeckMeterView meter(QStringLiteral("L"));
    const QImage image = drawAtRest(meter, 0.5f, tapeSize);
    // Straight up from the pivot the needle crosses the bottom bezel strip (below the clip at
    // inset 4); that strip must look the same as beside it.
    const QColor under = probe::at(image, {150, 137.5});
    const QColor beside = probe::at(image, {110, 137.5});
    EXPECT_TRUE(probe::near(under, beside, 3));
    EXPECT_TRUE(darkAt(image, {150, 100}));
}

// Yamaha: a 200 x 120 meter; pivot (100, 1.34 h), radius 1.1 h, needle 0.78 r.
constexpr QSizeF yamahaSize{200, 120};
const QPointF yamahaPivot{100, 1.34 * 120};
constexpr double yamahaRadius = 1.1 * 120;

TEST(YamahaVUMeterView, NeedleLeans25DegreesEitherSideOnTheScalesMarks) {
    for (const double level : {0.0, 0.76, 1.0}) {
        YamahaVUMeterView meter(QStringLiteral("LEFT"));
        const QImage image = drawAtRest(meter, static_cast<float>(level), yamahaSize);
        const double direction = 50 * level - 115;
        EXPECT_TRUE(darkAt(image, polarPoint(yamahaPivot, 0.55 * yamahaRadius, direction)))
            << level;
        EXPECT_TRUE(darkAt(image, polarPoint(yamahaPivot, 0.7 * yamahaRadius, direction))) << level;
        EXPECT_FALSE(darkAt(image, polarPoint(yamahaPivot, 0.55 * yamahaRadius, -180 - direction)))
            << level;
    }
    YamahaVUMeterView negative(QStringLiteral("RIGHT"));
    const QImage image = drawAtRest(negative, -2.0f, yamahaSize);
    EXPECT_TRUE(darkAt(image, polarPoint(yamahaPivot, 0.55 * yamahaRadius, -115)));
}

}  // namespace
}  // namespace corvanel::meters
