// The Yamaha faceplate's 12-band display: folding the analyzer's bands, lighting segments, and
// the faceplate's layout.
#include <gtest/gtest.h>

#include <limits>

#include "Probe.h"
#include "meters/styles/YamahaClassicComboView.h"
#include "meters/styles/YamahaTwelveBandEQView.h"

namespace corvanel::meters {
namespace {

TEST(YamahaTwelveBandEQView, FoldsEachColumnFromTheNearestBandAndItsNeighbours) {
    // With band i at i/100, a column reads the highest of its three bands: nearest + 1, except
    // for the last band, which has no upper neighbour. Nearest bands: 3, 7, 11, 15, 19, 23, 27,
    // 31, 34, 35, 38, 39.
    std::vector<float> levels(40);
    for (std::size_t i = 0; i < levels.size(); ++i)
        levels[i] = static_cast<float>(i) / 100;
    YamahaTwelveBandEQView view;
    view.setLevels(levels);
    const std::array<int, 12> expected{4, 8, 12, 16, 20, 24, 28, 32, 35, 36, 39, 39};
    const auto columns = view.bandLevels();
    for (std::size_t c = 0; c < 12; ++c)
        EXPECT_FLOAT_EQ(columns[c], expected[c] / 100.0f) << c;
}

TEST(YamahaTwelveBandEQView, TopTwoColumnsDifferOnlyWhenBand37IsLoudest) {
    std::vector<float> levels(40, 0.1f);
    levels[38] = 0.4f;
    YamahaTwelveBandEQView view;
    view.setLevels(levels);
    EXPECT_EQ(view.bandLevels()[10], view.bandLevels()[11]);
    levels[37] = 0.9f;
    view.setLevels(levels);
    EXPECT_FLOAT_EQ(view.bandLevels()[10], 0.9f);
    EXPECT_FLOAT_EQ(view.bandLevels()[11], 0.4f);
    // 6.3k and 8k share bands 34 and 35.
    levels[35] = 0.7f;
    view.setLevels(levels);
    EXPECT_FLOAT_EQ(view.bandLevels()[8], 0.7f);
    EXPECT_FLOAT_EQ(view.bandLevels()[9], 0.7f);
}

TEST(YamahaTwelveBandEQView, ShortOrEmptyLevelsStayInsideTheArray) {
    YamahaTwelveBandEQView view;
    for (const float v : view.bandLevels())
        EXPECT_EQ(v, 0.0f);
    view.setLevels({0.3f, 0.6f});
    EXPECT_FLOAT_EQ(view.bandLevels()[0], 0.6f);  // nearest band 3 is clipped to the last
    EXPECT_FLOAT_EQ(view.bandLevels()[11], 0.6f);
}

// A 400 x 200 display: canvas 380 x 180 at (10, 10); bars 160 high, columns (380 - 55) / 12
// wide on a pitch 5 wider, segments (160 - 34) / 18 = 7 high with 2-point gaps.
QPointF segmentCentre(int column, int s) {
    const double width = (380 - 55) / 12.0;
    return {10 + column * (width + 5) + width / 2, 10 + 160 - 7 * (s + 0.5) - 2 * s};
}

int litCount(float value) {
    YamahaTwelveBandEQView view;
    view.setLevels(std::vector<float>(40, value));
    const QImage image = probe::render({400, 200}, [&](QPainter& p) { view.paint(p, {400, 200}); });
    int lit = 0;
    for (int s = 0; s < 18; ++s) {
        const bool on = probe::brightness(probe::at(image, segmentCentre(4, s))) > 100;
        if (on && s != lit) return -1;  // lit segments must be the bottom ones, without holes
        lit += on ? 1 : 0;
    }
    return lit;
}

TEST(YamahaTwelveBandEQView, LightsRoundedCountsOfEighteenSegments) {
    EXPECT_EQ(litCount(1.0f), 18);
    EXPECT_EQ(litCount(0.5f), 9);
    EXPECT_EQ(litCount(0.75f), 14);  // 13.5 rounds away from zero
    EXPECT_EQ(litCount(1.8f), 18);
    EXPECT_EQ(litCount(-0.2f), 0);
    EXPECT_EQ(litCount(std::numeric_limits<float>::quiet_NaN()), 0);
}

TEST(YamahaTwelveBandEQView, SegmentColoursChangeAtTheirFractions) {
    YamahaTwelveBandEQView view;
    view.setLevels(std::vector<float>(40, 1.0f));
    const QImage image = probe::render({400, 200}, [&](QPainter& p) { view.paint(p, {400, 200}); });
    const auto colour = [&](int s) { return probe::at(image, segmentCentre(7, s)); };
    EXPECT_GT(colour(11).green(), 200);  // 12 green
    EXPECT_LT(colour(11).red(), 80);
    EXPECT_GT(colour(12).red(), 200);  // 13 to 15 amber
    EXPECT_GT(colour(14).green(), 140);
    EXPECT_LT(colour(15).green(), 90);  // 16 to 18 red
    EXPECT_GT(colour(17).red(), 200);
}

TEST(YamahaClassicComboView, MetersAndDisplayShareWhatThePaddingsLeave) {
    const auto layout = YamahaClassicComboView::layoutFor({500, 560});
    // 560 - 71 = 489 flexible points: 244 for the meters, 245 for the display.
    EXPECT_EQ(layout.meters, QRectF(18, 22, 464, 244));
    EXPECT_EQ(layout.rule, QRectF(16, 282, 468, 1));
    EXPECT_EQ(layout.spectrum, QRectF(18, 299, 464, 245));
}

}  // namespace
}  // namespace corvanel::meters
