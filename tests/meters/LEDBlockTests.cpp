// The LED bar meter and the boombox, probed where their segments and blocks must be lit or not.
#include <gtest/gtest.h>

#include <limits>

#include "Probe.h"
#include "meters/styles/BoomboxView.h"
#include "meters/styles/LEDBarMeterView.h"

namespace corvanel::meters {
namespace {

using probe::Led;

// A 300 x 60 bar meter: the canvas is 280 x 40 at (10, 10); segments are (280 - 68) / 28 wide.
constexpr QSizeF barSize{300, 60};

QImage drawBar(float level, QSizeF size = barSize) {
    LEDBarMeterView meter(QStringLiteral("L"));
    meter.setLevel(level);
    return probe::render(size, [&](QPainter& p) { meter.paint(p, size); });
}

Led barSegment(const QImage& image, int s) {
    const double width = (280 - 68) / 28.0;
    return probe::classify(probe::at(image, {10 + 14 + s * (width + 2) + width / 2, 24.5}));
}

TEST(LEDBarMeterView, LightsRoundedSegmentCountsInZoneColours) {
    const QImage half = drawBar(0.5f);  // round(14.0) = 14
    EXPECT_EQ(barSegment(half, 0), Led::green);
    EXPECT_EQ(barSegment(half, 13), Led::green);
    EXPECT_EQ(barSegment(half, 14), Led::dark);
    const QImage zeroVU = drawBar(0.78f);  // round(21.84) = 22: green to 15, amber 16 to 21
    EXPECT_EQ(barSegment(zeroVU, 15), Led::green);
    EXPECT_EQ(barSegment(zeroVU, 16), Led::amber);
    EXPECT_EQ(barSegment(zeroVU, 21), Led::amber);
    EXPECT_EQ(barSegment(zeroVU, 22), Led::dark);
    const QImage over = drawBar(1.2f);
    EXPECT_EQ(barSegment(over, 22), Led::red);
    EXPECT_EQ(barSegment(over, 27), Led::red);
    for (const float nothing : {-0.1f, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(barSegment(drawBar(nothing), 0), Led::dark);
}

// Horizontal centre of the ink in the label row near `x` (text is brighter than the face).
double labelCentre(const QImage& image, double x, double y, bool red = false) {
    double sum = 0, weight = 0;
    for (int px = static_cast<int>(x) - 14; px <= static_cast<int>(x) + 14; ++px)
        for (int py = static_cast<int>(y) - 4; py <= static_cast<int>(y) + 4; ++py) {
            const QColor c = image.pixelColor(px, py);
            const double ink = red ? c.red() - c.green() : probe::brightness(c);
            if (ink > 60) {
                sum += px * ink;
                weight += ink;
            }
        }
    return weight > 0 ? sum / weight : -1;
}

TEST(LEDBarMeterView, ScaleLabelsAreKeptInsideTheCanvasAndZeroUpIsRed) {
    // A 200-point canvas: "-20" belongs at x = 14 but is raised to 22; "+3" at 200 is lowered
    // to 190. The canvas starts 10 points into the view; the label row is 6.5 above its bottom.
    const QImage image = drawBar(0.0f, {220, 60});
    const double row = 10 + 40 - 6.5;
    EXPECT_NEAR(labelCentre(image, 10 + 22, row), 10 + 22, 1.5);
    EXPECT_NEAR(labelCentre(image, 10 + 190, row, true), 10 + 190, 1.5);
    const double zero = 10 + 14 + 0.78 * 186;
    EXPECT_NEAR(labelCentre(image, zero, row, true), zero, 1.5);
    // "-10" is grey: no red ink around it.
    EXPECT_EQ(labelCentre(image, 10 + 14 + 0.3 * 186, row, true), -1);
}

// A 500 x 300 boombox: the canvas is 476 x 276 at (12, 12), 16 blocks per column.
constexpr QSizeF boomboxSize{500, 300};

struct Columns {
    int count;
    double width() const { return (476 - 5.0 * (count - 1)) / count; }
    QPointF block(int column, int k) const {
        const double height = (276 - 45) / 16.0;
        return {12 + column * (width() + 5) + width() / 2,
                12 + 276 - height * (k - 0.5) - 3 * (k - 1)};
    }
};

QImage drawBoombox(std::vector<float> levels) {
    BoomboxView view;
    view.setValues({std::move(levels), {}, 0, 0});
    return probe::render(boomboxSize, [&](QPainter& p) { view.paint(p, boomboxSize); });
}

Led block(const QImage& image, Columns columns, int column, int k) {
    return probe::classify(probe::at(image, columns.block(column, k)));
}

TEST(BoomboxView, PairsBandsAndStacksRoundedBlockCounts) {
    std::vector<float> levels(40, 0.0f);
    levels[0] = 0.2f;  // column 0 takes the louder of the pair: 0.6 -> 10 blocks
    levels[1] = 0.6f;
    levels[2] = 0.03f;   // 0.48 blocks -> none
    levels[4] = 0.032f;  // 0.512 -> one block
    levels[7] = 5.0f;    // far above full scale: all 16, never more
    const QImage image = drawBoombox(levels);
    const Columns twenty{20};
    EXPECT_EQ(block(image, twenty, 0, 7), Led::green);
    EXPECT_EQ(block(image, twenty, 0, 8), Led::yellow);
    EXPECT_EQ(block(image, twenty, 0, 10), Led::yellow);
    EXPECT_EQ(block(image, twenty, 0, 11), Led::dark);
    EXPECT_EQ(block(image, twenty, 1, 1), Led::dark);
    EXPECT_EQ(block(image, twenty, 2, 1), Led::green);
    EXPECT_EQ(block(image, twenty, 2, 2), Led::dark);
    EXPECT_EQ(block(image, twenty, 3, 12), Led::yellow);
    EXPECT_EQ(block(image, twenty, 3, 13), Led::orange);
    EXPECT_EQ(block(image, twenty, 3, 14), Led::orange);
    EXPECT_EQ(block(image, twenty, 3, 16), Led::red);
    // Nothing above the 16th block.
    const QPointF above = twenty.block(3, 16) - QPointF(0, 12);
    EXPECT_EQ(probe::classify(probe::at(image, above)), Led::dark);
}

TEST(BoomboxView, OddBandCountMakesALastColumnOfTheLastBandAlone) {
    std::vector<float> levels(41, 0.0f);
    levels[40] = 1.0f;
    const QImage image = drawBoombox(levels);
    const Columns twentyOne{21};
    EXPECT_EQ(block(image, twentyOne, 20, 16), Led::red);
    EXPECT_EQ(block(image, twentyOne, 19, 1), Led::dark);
}

TEST(BoomboxView, NoLevelsDrawsOnlyThePanel) {
    const QImage image = drawBoombox({});
    const QColor panel = probe::at(image, {250, 150});
    EXPECT_LT(probe::brightness(panel), 40);
    EXPECT_GT(panel.blue(), panel.green());  // dark purple
    EXPECT_TRUE(
        probe::near(probe::at(image, Columns{20}.block(5, 1)), probe::at(image, {250, 280}), 3));
}

}  // namespace
}  // namespace corvanel::meters
