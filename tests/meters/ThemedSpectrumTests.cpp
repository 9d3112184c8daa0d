#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "meters/Probe.h"
#include "meters/styles/ComboView.h"
#include "meters/styles/HoloAnalyzerView.h"
#include "meters/styles/InfernoComboView.h"
#include "meters/styles/MagmaAnalyzerView.h"
#include "meters/styles/MagmaVUMeterView.h"
#include "meters/styles/PulsarComboView.h"
#include "meters/styles/StormAnalyzerView.h"
#include "meters/styles/VintageAnalyzerView.h"

namespace corvanel::meters {
namespace {

const QSizeF spectrumSize(460, 260);

QImage renderValues(MeterRenderer& renderer, const MeterValues& values, const QSizeF& size) {
    renderer.setValues(values);
    renderer.settle();
    return probe::render(size, [&](QPainter& painter) { renderer.paint(painter, size); });
}

// One band at `level` (and its peak at `peak`), the other 39 silent.
MeterValues oneBand(std::size_t band, float level, float peak = 0.0f) {
    MeterValues values{std::vector<float>(40, 0.0f), std::vector<float>(40, 0.0f), 0, 0};
    values.levels[band] = level;
    values.peaks[band] = peak;
    return values;
}

// The centre of band i's bar in the view, for the themed spectra (inset 11, margin 22, gap 2.5).
double barCentre(std::size_t i, const QSizeF& size = spectrumSize) {
    const double width = size.width() - 22;
    const double bar = (width - 22 - 2.5 * 39) / 40;
    return 11 + 22 + (bar + 2.5) * static_cast<double>(i) + bar / 2;
}
double plotHeight(const QSizeF& size = spectrumSize) {
    return size.height() - 22 - 13;
}

TEST(ThemedSpectra, WithoutLevelsDrawOnlyTheirBackdrop) {
    MagmaAnalyzerView lava;
    StormAnalyzerView storm;
    HoloAnalyzerView neon;
    for (MeterRenderer* view :
         {static_cast<MeterRenderer*>(&lava), static_cast<MeterRenderer*>(&storm),
          static_cast<MeterRenderer*>(&neon)}) {
        const QImage empty = renderValues(*view, {}, spectrumSize);
        // No labels either: a band-less plot has nothing to label; the panel's middle is plain.
        const QColor middle = probe::at(empty, {230, 130});
        EXPECT_LT(probe::brightness(middle), 45);
        EXPECT_NE(empty, renderValues(*view, oneBand(20, 0.6f), spectrumSize));
    }
}

TEST(MagmaAnalyzerView, JetsReachTheTopFromAbout77Percent) {
    MagmaAnalyzerView lava;
    const double x = barCentre(12);
    const double top = 11 + 3;  // just below the plot's top edge
    const double floor = 11 + plotHeight() - 10;
    const QImage full = renderValues(lava, oneBand(12, 0.78f), spectrumSize);
    EXPECT_GT(probe::at(full, {x, floor}).red(), 120);
    // The jet wanders sideways a little near its tip; look across the bar's width.
    double brightest = 0;
    for (double dx = -4; dx <= 4; dx += 1)
        brightest = std::max(brightest, probe::brightness(probe::at(full, {x + dx, top})));
    EXPECT_GT(brightest, 120);
    // Two points of jet or less are not drawn at all (above the floor, whose glow follows the
    // mean level).
    const QImage none = renderValues(lava, oneBand(12, 0.0f), spectrumSize);
    const QRect plot(0, 0, static_cast<int>(spectrumSize.width()),
                     static_cast<int>(11 + plotHeight() - 14));
    EXPECT_EQ(none.copy(plot),
              renderValues(lava, oneBand(12, 2.0f / plotHeight() / 1.3f), spectrumSize).copy(plot));
    // A peak of exactly 0.04 throws no spark; 0.5 does, at its boosted height.
    EXPECT_EQ(none, renderValues(lava, oneBand(12, 0.0f, 0.04f), spectrumSize));
    const QImage spark = renderValues(lava, oneBand(12, 0.0f, 0.5f), spectrumSize);
    EXPECT_GT(probe::at(spark, {x, 11 + plotHeight() * (1 - 0.65)}).red(), 150);
}

TEST(StormAnalyzerView, StrokesHangFromTheTop) {
    StormAnalyzerView storm;
    const double x = barCentre(30);
    const QImage half = renderValues(storm, oneBand(30, 0.3f), spectrumSize);
    // Reaches 0.39 of the plot down from the top edge, not from the floor; it wanders within
    // its band.
    EXPECT_GT(probe::brightestAcross(half, {x, 11 + 4}, 3), 75);
    EXPECT_LT(probe::brightestAcross(half, {x, 11 + plotHeight() - 6}, 3), 60);
    // A peak spark hangs at its boosted depth.
    const QImage spark = renderValues(storm, oneBand(30, 0.0f, 0.5f), spectrumSize);
    EXPECT_GT(probe::brightness(probe::at(spark, {x, 11 + plotHeight() * 0.65})), 150);
}

TEST(HoloAnalyzerView, BarsRiseWithoutGainAndCarryPeakCaps) {
    HoloAnalyzerView neon;
    const double width = spectrumSize.width() - 22;
    const double bar = (width - 22 - 2.5 * 39) / 40;
    const double x = 11 + 22 + (bar + 2.5) * 5 + bar / 2;
    const QImage half = renderValues(neon, oneBand(5, 0.5f, 0.8f), spectrumSize);
    const double P = plotHeight();
    EXPECT_GT(probe::at(half, {x, 11 + P * 0.55}).blue(), 150);            // inside the bar
    EXPECT_LT(probe::brightness(probe::at(half, {x, 11 + P * 0.4})), 70);  // above it
    const QColor cap = probe::at(half, {x, 11 + P * 0.2 + 0.75});
    EXPECT_GT(probe::brightness(cap), 200);
}

TEST(VintageAnalyzerView, TurnsRedAboveTheReferenceLine) {
    VintageAnalyzerView amber;
    const QSizeF size(460, 260);
    const double W = size.width() - 22;
    const double Hb = size.height() - 22 - 13;
    const double bar = (W - 22 - 3 * 39) / 40;
    const double x = 11 + 22 + (bar + 3) * 8 + bar / 2;
    // A peak of 0.96 puts its 1.5-point marker on whole pixels: rows 20 and 21 (half).
    const QImage loud = renderValues(amber, oneBand(8, 0.9f, 0.96f), size);
    const QColor dark = probe::at(loud, {x, 11 + Hb * 0.5});
    EXPECT_LT(probe::brightness(dark), 70);
    const QColor red = probe::at(loud, {x, 11 + Hb * (1 - 0.86)});
    EXPECT_GT(red.red(), 150);
    EXPECT_LT(red.green(), 60);
    const QColor marker = probe::at(loud, {x, 11 + Hb * 0.04 + 0.5});
    EXPECT_GT(marker.red(), 150);
    EXPECT_LT(marker.green(), 60);
    // Half way: only the dark bar, nothing red above the line.
    const QImage half = renderValues(amber, oneBand(8, 0.5f), size);
    EXPECT_LT(probe::brightness(probe::at(half, {x, 11 + Hb * 0.6})), 70);
    EXPECT_GT(probe::at(half, {x, 11 + Hb * 0.3}).green(), 100);
}

// The panel's default area, 460 x 450: the rim's radius is 450 / 2 - 18 = 207 about the
// centre, the core 0.3 of it, spokes from 8 points beyond the core to the rim.
const QSizeF pulsarSize(460, 450);
const QPointF pulsarCentre(230, 225);
constexpr double pulsarCore = 0.3 * 207;
constexpr double pulsarInner = pulsarCore + 8;
constexpr double pulsarSpan = 207 - pulsarInner;

TEST(PulsarComboView, SpokesPointRightDownLeftAndUpForBands10To30And0) {
    const QSizeF size = pulsarSize;
    const QPointF directions[4] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
    const std::size_t bands[4] = {10, 20, 30, 0};
    for (int k = 0; k < 4; ++k) {
        PulsarComboView pulsar;
        const QImage image = renderValues(pulsar, oneBand(bands[k], 1.0f), size);
        for (int d = 0; d < 4; ++d) {
            const QPointF probePoint =
                pulsarCentre + directions[d] * (pulsarInner + 0.6 * pulsarSpan);
            const double brightness = probe::brightness(probe::at(image, probePoint));
            if (d == k) {
                EXPECT_GT(brightness, 120) << "band " << bands[k];
            } else {
                EXPECT_LT(brightness, 40) << "band " << bands[k] << " towards " << d;
            }
        }
    }
    // A spoke of half a point or less is not drawn.
    PulsarComboView pulsar;
    EXPECT_EQ(renderValues(pulsar, oneBand(10, 0.0f), size),
              renderValues(pulsar, oneBand(10, static_cast<float>(0.5 / pulsarSpan)), size));
}

TEST(PulsarComboView, HalfRingsFollowTheirChannels) {
    const QSizeF size = pulsarSize;
    PulsarComboView pulsar;
    MeterValues values = oneBand(0, 0.0f);
    values.left = 1.0f;
    values.right = 0.0f;
    const QImage image = renderValues(pulsar, values, size);
    // Five points out from the ring's circle: inside the 11-point left ring, outside the
    // 2-point right one.
    const QColor left = probe::at(image, pulsarCentre + QPointF(-(0.95 * pulsarCore + 4), 0));
    const QColor right = probe::at(image, pulsarCentre + QPointF(0.95 * pulsarCore + 4, 0));
    EXPECT_GT(left.blue(), 180);
    EXPECT_LT(probe::brightness(right), probe::brightness(left) - 80);
}

TEST(ComboView, FeedsTheLeftMeterTheLeftChannelAndTheSpectrumTheBands) {
    InfernoComboView inferno;
    MeterValues values = oneBand(0, 0.0f);
    values.left = 1.0f;
    values.right = 0.0f;
    const QSizeF size(500, 560);
    const QImage image = renderValues(inferno, values, size);
    const ComboView::Layout parts = ComboView::layout(size, MagmaVUMeterView::aspectRatio);
    // The middle of each meter's channel, half way up.
    const auto channelMiddle = [](const QRectF& meter) {
        const double w = meter.width() - 12;
        const double h = meter.height() - 12;
        return meter.topLeft() + QPointF(6 + 0.42 * w, 6 + 0.5 * h);
    };
    EXPECT_GT(probe::at(image, channelMiddle(parts.left)).red(), 150);
    EXPECT_LT(probe::brightness(probe::at(image, channelMiddle(parts.right))), 20);
}

TEST(ComboView, KeepsMeterAspectAndGivesTheSpectrumTheRest) {
    // Wide: the meters' width decides the row's height.
    const ComboView::Layout wide = ComboView::layout(QSizeF(500, 560), 1.5);
    EXPECT_EQ(wide.left.width(), 243);
    EXPECT_EQ(wide.left.height(), 162);
    EXPECT_EQ(wide.right.left() - wide.left.right(), 14);
    EXPECT_EQ(wide.spectrum.top(), 174);
    EXPECT_EQ(wide.spectrum.bottom(), 560);
    // Short: the row takes at most half the height and the pair stays centred.
    const ComboView::Layout low = ComboView::layout(QSizeF(500, 212), 1.5);
    EXPECT_EQ(low.left.height(), 100);
    EXPECT_EQ(low.left.width(), 150);
    EXPECT_EQ(low.left.left(), 500 - low.right.right());
    // Without an aspect the row and the spectrum share the height.
    const ComboView::Layout equal = ComboView::layout(QSizeF(500, 560), std::nullopt);
    EXPECT_EQ(equal.left.height(), 274);
    EXPECT_EQ(equal.spectrum.height(), 274);
}

}  // namespace
}  // namespace corvanel::meters
