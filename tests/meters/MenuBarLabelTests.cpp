// The menu-bar label image: a template image at two pixels per point whose bars are the
// analyzer's levels reduced pairwise, or a waveform symbol when there are none.
#include <gtest/gtest.h>

#include "Probe.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"
#include "meters/styles/SpectrumBarsView.h"

namespace corvanel::meters {
namespace {

QImage label(const QString& title, std::optional<std::vector<float>> levels) {
    return SpectrumBarsView::menuBarImage(title, levels);
}

// Opaque rows of one pixel column.
int inkedHeight(const QImage& image, int x) {
    int rows = 0;
    for (int y = 0; y < image.height(); ++y)
        rows += image.pixelColor(x, y).alpha() > 127;
    return rows;
}

// Pixel column through the middle of bar j (1.5 points wide, 1 point apart).
int barColumn(int j) {
    return static_cast<int>((j * 2.5 + 0.75) * 2);
}

TEST(MenuBarLabel, FortyLevelsGiveTwentyBarsOfTheLouderOfEachPair) {
    std::vector<float> levels(40, 0.0f);
    levels[0] = 0.2f;
    levels[1] = 0.9f;  // 0.9 x 14 = 12.6 points = 25.2 pixels
    levels[7] = 0.5f;  // pair 3: 7 points
    const QImage image = label({}, levels);
    EXPECT_EQ(image.devicePixelRatio(), 2.0);
    EXPECT_EQ(image.width(), 98);  // 20 x 1.5 + 19 x 1 = 49 points
    EXPECT_EQ(image.height(), 32);
    EXPECT_NEAR(inkedHeight(image, barColumn(0)), 25.2, 1.0);
    EXPECT_NEAR(inkedHeight(image, barColumn(3)), 14, 1.0);
    EXPECT_NEAR(inkedHeight(image, barColumn(1)), 4, 1.0);  // silent: a 2-point stub
    // Bottom-aligned: every bar reaches the bottom row; the gap between bars is empty.
    EXPECT_GT(image.pixelColor(barColumn(1), 31).alpha(), 127);
    EXPECT_EQ(inkedHeight(image, 4), 0);
    // Only alpha matters: the ink is black.
    const QColor ink = image.pixelColor(barColumn(0), 30);
    EXPECT_EQ(ink.red() + ink.green() + ink.blue(), 0);
}

TEST(MenuBarLabel, OddCountPairsTheLastLevelWithItself) {
    const QImage image = label({}, std::vector<float>{0.1f, 0.5f, 0.3f});
    EXPECT_EQ(image.width(), 8);  // two bars: 4 points
    EXPECT_NEAR(inkedHeight(image, barColumn(0)), 14, 1.0);
    EXPECT_NEAR(inkedHeight(image, barColumn(1)), 8.4, 1.0);
}

TEST(MenuBarLabel, AllSilentLevelsAreStubs) {
    const QImage image = label({}, std::vector<float>(40, 0.0f));
    for (int j = 0; j < 20; ++j)
        EXPECT_NEAR(inkedHeight(image, barColumn(j)), 4, 1.0) << j;
}

TEST(MenuBarLabel, AbsentOrEmptyLevelsShowTheWaveformSymbol) {
    for (const auto& levels : {std::optional<std::vector<float>>(),
                               std::optional<std::vector<float>>(std::vector<float>{})}) {
        const QImage image = label({}, levels);
        ASSERT_FALSE(image.isNull());
        EXPECT_EQ(image.width(), 34);  // 17 points
        EXPECT_EQ(image.height(), 28);
        // Strokes of different heights, each symmetric about the middle line.
        int tallest = 0, shortest = 100;
        for (int x = 0; x < image.width(); ++x) {
            const int h = inkedHeight(image, x);
            if (h == 0) continue;
            tallest = std::max(tallest, h);
            shortest = std::min(shortest, h);
            int top = 0;
            while (image.pixelColor(x, top).alpha() <= 127)
                ++top;
            int bottom = image.height() - 1;
            while (image.pixelColor(x, bottom).alpha() <= 127)
                --bottom;
            EXPECT_NEAR(top + bottom, image.height() - 1, 2) << x;
        }
        EXPECT_GE(tallest, 26);
        EXPECT_LE(shortest, 10);
    }
}

TEST(MenuBarLabel, TitleComesFirstFivePointsBeforeTheBars) {
    const QString title = QStringLiteral("96 kHz");
    const QImage image = label(title, std::vector<float>(40, 1.0f));
    TextStyle style{systemFont(13, FontWeight::medium), Qt::black, true};
    const double titleWidth = textWidth(title, style);
    EXPECT_NEAR(image.width(), (titleWidth + 5 + 49) * 2, 1.0);
    // The first bar starts right after the gap; the gap itself is empty.
    const int firstBar = static_cast<int>((titleWidth + 5) * 2);
    EXPECT_NEAR(inkedHeight(image, firstBar + 1), 28, 1.0);
    EXPECT_EQ(inkedHeight(image, firstBar - 3), 0);
    // The text is vertically centred with the 16-point bar frame.
    int top = image.height(), bottom = 0;
    for (int x = 0; x < static_cast<int>(titleWidth * 2); ++x)
        for (int y = 0; y < image.height(); ++y)
            if (image.pixelColor(x, y).alpha() > 127) {
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    EXPECT_NEAR((top + bottom) / 2.0, image.height() / 2.0, 3.0);
}

TEST(SpectrumBarsView, NewLevelsSlideLinearlyOverSixHundredthsOfASecond) {
    SpectrumBarsView bars(std::vector<float>{0.0f});
    bars.setLevels({1.0f});
    const auto heightNow = [&] {
        const QImage image = probe::render(
            {2, 16},
            [&](QPainter& p) {
                bars.paint(p, {0, 0}, Qt::black);
            },
            2.0);
        return inkedHeight(image, 1) / 2.0;
    };
    EXPECT_NEAR(heightNow(), 2.0, 0.5);  // the silent stub it starts from
    EXPECT_TRUE(bars.step(0.03));
    EXPECT_NEAR(heightNow(), 7.0, 0.5);  // half-way: 0.5 x 14
    // A new value mid-way starts from what is shown.
    bars.setLevels({0.0f});
    EXPECT_NEAR(heightNow(), 7.0, 0.5);
    EXPECT_TRUE(bars.step(0.03));
    EXPECT_NEAR(heightNow(), 3.5, 0.5);
    EXPECT_FALSE(bars.step(0.03));
    EXPECT_NEAR(heightNow(), 2.0, 0.5);
}

}  // namespace
}  // namespace corvanel::meters
