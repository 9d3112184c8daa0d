// The LED spectrum analyzer, probed where its geometry puts segments, peaks and labels.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Probe.h"
#include "meters/styles/LEDSpectrumView.h"

namespace corvanel::meters {
namespace {

using probe::Led;

// A 422 x 300 view: the LED canvas is 400 x 278 at (11, 11), so 40 columns are 7.55 wide.
constexpr double viewWidth = 422;
constexpr double viewHeight = 300;
constexpr double canvasHeight = viewHeight - 22;
constexpr double columnWidth = (400 - 20 - 78) / 40.0;
constexpr double segmentHeight = (canvasHeight - 47.5) / 24;

QPointF segmentCentre(int band, int segment) {
    const double floor = 11 + canvasHeight - 13;
    return {11 + 20 + band * (columnWidth + 2) + columnWidth / 2,
            floor - segmentHeight * (segment + 0.5) - 1.5 * segment};
}

QImage draw(std::vector<float> levels, std::vector<float> peaks) {
    LEDSpectrumView view;
    view.setValues({std::move(levels), std::move(peaks), 0, 0});
    return probe::render({viewWidth, viewHeight}, [&](QPainter& p) {
        view.paint(p, {viewWidth, viewHeight});
    });
}

Led segmentAt(const QImage& image, int band, int segment) {
    return probe::classify(probe::at(image, segmentCentre(band, segment)));
}

TEST(LEDSpectrumView, LightsRoundedSegmentCountsFromTheBottomInTheirZoneColours) {
    std::vector<float> levels(40, 0.0f);
    levels[0] = 0.5f;   // 12 lit
    levels[1] = 0.52f;  // 12.48 -> 12
    levels[2] = 0.53f;  // 12.72 -> 13
    levels[3] = 1.0f;   // all 24
    levels[4] = 1.7f;   // above full scale: all 24
    levels[5] = -0.3f;  // nothing
    levels[6] = std::numeric_limits<float>::quiet_NaN();
    const QImage image = draw(levels, std::vector<float>(40, 0.0f));

    EXPECT_EQ(segmentAt(image, 0, 11), Led::green);
    EXPECT_EQ(segmentAt(image, 0, 12), Led::dark);
    EXPECT_EQ(segmentAt(image, 1, 11), Led::green);
    EXPECT_EQ(segmentAt(image, 1, 12), Led::dark);
    EXPECT_EQ(segmentAt(image, 2, 12), Led::green);
    EXPECT_EQ(segmentAt(image, 2, 13), Led::dark);
    // Zone boundaries: 13 green (f = 0.583), 14 amber (0.625), 18 amber, 19 red (0.833).
    EXPECT_EQ(segmentAt(image, 3, 13), Led::green);
    EXPECT_EQ(segmentAt(image, 3, 14), Led::amber);
    EXPECT_EQ(segmentAt(image, 3, 18), Led::amber);
    EXPECT_EQ(segmentAt(image, 3, 19), Led::red);
    EXPECT_EQ(segmentAt(image, 3, 23), Led::red);
    EXPECT_EQ(segmentAt(image, 4, 23), Led::red);
    EXPECT_EQ(segmentAt(image, 5, 0), Led::dark);
    EXPECT_EQ(segmentAt(image, 6, 0), Led::dark);
    // The gap between two lit segments shows the face, not LED colour.
    const QPointF gap = segmentCentre(3, 5) - QPointF(0, segmentHeight / 2 + 0.75);
    EXPECT_EQ(probe::classify(probe::at(image, gap)), Led::dark);
}

TEST(LEDSpectrumView, UnlitSegmentsGlowFaintlyInTheirOwnColour) {
    const QImage image = draw(std::vector<float>(40, 0.0f), std::vector<float>(40, 0.0f));
    const QColor dimGreen = probe::at(image, segmentCentre(10, 2));
    const QColor dimRed = probe::at(image, segmentCentre(10, 22));
    EXPECT_GT(dimGreen.green(), dimGreen.red() + 10);
    EXPECT_GT(dimRed.red(), dimRed.green() + 10);
    EXPECT_LT(probe::brightness(dimGreen), 70);
}

TEST(LEDSpectrumView, PeakSegmentShowsOnlyAboveTheLitPartAndAboveTheThreshold) {
    std::vector<float> levels(40, 0.0f);
    std::vector<float> peaks(40, 0.0f);
    peaks[0] = 0.5f;   // segment 12
    peaks[1] = 0.03f;  // below 0.04: none
    levels[2] = 0.75f;
    peaks[2] = 0.5f;  // inside the lit part: drawn lit
    peaks[3] = 1.4f;  // above full scale: the top segment
    peaks[4] = std::numeric_limits<float>::infinity();
    const QImage image = draw(levels, peaks);

    EXPECT_EQ(segmentAt(image, 0, 12), Led::orange);
    EXPECT_EQ(segmentAt(image, 0, 11), Led::dark);
    EXPECT_EQ(segmentAt(image, 0, 13), Led::dark);
    EXPECT_EQ(segmentAt(image, 1, 0), Led::dark);
    EXPECT_EQ(segmentAt(image, 2, 12), Led::green);
    EXPECT_EQ(segmentAt(image, 3, 23), Led::orange);
    EXPECT_EQ(segmentAt(image, 4, 23), Led::dark);
}

TEST(LEDSpectrumView, ShorterPeaksThanLevelsDrawThoseBandsWithoutPeak) {
    std::vector<float> levels(40, 0.2f);
    const QImage image = draw(levels, {0.9f});
    EXPECT_EQ(segmentAt(image, 0, 21), Led::orange);
    EXPECT_EQ(segmentAt(image, 5, 4), Led::green);
    EXPECT_EQ(segmentAt(image, 5, 21), Led::dark);
}

// Inked rows (text, grey 0.55, brighter than the dark face) inside a box.
std::pair<int, int> inkedRows(const QImage& image, QRect box) {
    int top = -1, bottom = -1;
    for (int y = box.top(); y <= box.bottom(); ++y)
        for (int x = box.left(); x <= box.right(); ++x)
            if (probe::brightness(image.pixelColor(x, y)) > 70) {
                if (top < 0) top = y;
                bottom = y;
            }
    return {top, bottom};
}

TEST(LEDSpectrumView, DecibelLabelsAreClampedIntoTheCanvasAndRightAligned) {
    const QImage image = draw(std::vector<float>(40, 0.0f), std::vector<float>(40, 0.0f));
    // "0" belongs at y = 0 of the canvas but is clamped down to 4; "-60" at H - 13 is clamped
    // up to H - 17. Both are vertically centred there, left of x = 15.
    const auto [zeroTop, zeroBottom] = inkedRows(image, QRect(16, 11, 11, 18));
    EXPECT_NEAR((zeroTop + zeroBottom) / 2.0, 11 + 4, 2.0);
    const auto [lowTop, lowBottom] = inkedRows(image, QRect(16, 250, 11, 30));
    EXPECT_NEAR((lowTop + lowBottom) / 2.0, 11 + canvasHeight - 17, 2.0);
    // Nothing of the labels crosses their right edge at x = 15 of the canvas.
    EXPECT_EQ(inkedRows(image, QRect(11 + 16, 11, 3, 278)).first, -1);
}

TEST(LEDSpectrumView, NoBandsDrawsOnlyTheCase) {
    const QImage empty = draw({}, {});
    const QImage silent = draw(std::vector<float>(40, 0.0f), std::vector<float>(40, 0.0f));
    const QPointF ledArea = segmentCentre(10, 5);
    EXPECT_NE(probe::at(empty, ledArea), probe::at(silent, ledArea));
    // The empty face is even where segments and labels would be.
    EXPECT_TRUE(
        probe::near(probe::at(empty, ledArea), probe::at(empty, ledArea + QPointF(3, 1)), 2));
    EXPECT_EQ(inkedRows(empty, QRect(16, 11, 11, 278)).first, -1);
}

}  // namespace
}  // namespace corvanel::meters
