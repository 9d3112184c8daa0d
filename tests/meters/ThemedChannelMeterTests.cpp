#include <gtest/gtest.h>

#include <QPainterPath>
#include <QPolygonF>
#include <cmath>

#include "meters/Probe.h"
#include "meters/styles/HoloVUMeterView.h"
#include "meters/styles/MagmaVUMeterView.h"
#include "meters/styles/RetroVUMeterView.h"
#include "meters/styles/StormVUMeterView.h"

namespace corvanel::meters {
namespace {

const QSizeF meterSize(300, 200);

template <typename Meter>
QImage renderMeter(float level, const QString& channel = QStringLiteral("L")) {
    Meter meter(channel);
    meter.setLevel(level);
    meter.settle();
    return probe::render(meterSize, [&](QPainter& painter) { meter.paint(painter, meterSize); });
}

QImage crop(const QImage& image, const QRectF& area) {
    return image.copy(area.toRect());
}

// Pixels of `area` that differ between two images.
int differing(const QImage& a, const QImage& b, const QRectF& area) {
    int count = 0;
    const QRect r = area.toRect().intersected(a.rect());
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x)
            count += a.pixel(x, y) != b.pixel(x, y);
    return count;
}

// The magma meter's canvas geometry, in the view's points.
struct MagmaCanvas {
    double top, bottom, centre, halfWidth;
    double surface(double level) const { return bottom - (bottom - top) * level; }
};
MagmaCanvas magmaCanvas() {
    const QSizeF canvas = meterSize - QSizeF(12, 12);
    return {6 + 0.12 * canvas.height(), 6 + 0.88 * canvas.height(), 6 + 0.42 * canvas.width(),
            0.09 * canvas.width()};
}

TEST(MagmaVUMeterView, FillsWithLavaOnlyAboveTwoHundredths) {
    const QImage empty = renderMeter<MagmaVUMeterView>(0.0f);
    EXPECT_EQ(empty, renderMeter<MagmaVUMeterView>(0.02f));
    EXPECT_EQ(empty, renderMeter<MagmaVUMeterView>(-1.0f));
    const MagmaCanvas c = magmaCanvas();
    const QPointF floor(c.centre, c.bottom - 2);
    EXPECT_LT(probe::brightness(probe::at(empty, floor)), 20);
    const QColor lava = probe::at(renderMeter<MagmaVUMeterView>(0.03f), floor);
    EXPECT_GT(lava.red(), 90);
    EXPECT_GT(lava.red(), 2 * lava.blue());
    // Full: the lava at the top is hot yellow, at the bottom deep red; colour follows height.
    const QImage full = renderMeter<MagmaVUMeterView>(1.0f);
    EXPECT_GT(probe::at(full, {c.centre, c.top + 6}).green(), 150);
    EXPECT_LT(probe::at(full, {c.centre, c.bottom - 2}).green(), 90);
}

TEST(MagmaVUMeterView, ThrowsSparksAboveThirtyFivePercent) {
    const MagmaCanvas c = magmaCanvas();
    const QImage reference = renderMeter<MagmaVUMeterView>(0.03f);
    // Well above the surface, out of reach of the crust's and lava's glow: only sparks.
    const auto above = [&](double level) {
        const double surface = c.surface(level);
        return QRectF(QPointF(c.centre - 2 * c.halfWidth, surface - 40),
                      QPointF(c.centre + 2 * c.halfWidth, surface - 12));
    };
    EXPECT_EQ(differing(renderMeter<MagmaVUMeterView>(0.35f), reference, above(0.35)), 0);
    EXPECT_GT(differing(renderMeter<MagmaVUMeterView>(1.0f), reference, above(1.0)), 0);
}

TEST(MagmaVUMeterView, GlowsWhiteHotOnlyAboveNinetyPercent) {
    const MagmaCanvas c = magmaCanvas();
    // Just above the middle of the surface, where only the hot spot reaches.
    const auto aboveSurface = [&](float level) {
        return probe::brightness(
            probe::at(renderMeter<MagmaVUMeterView>(level), {c.centre, c.surface(level) - 6}));
    };
    const double atNinety = aboveSurface(0.9f);
    EXPECT_GT(aboveSurface(0.95f), atNinety + 25);
    EXPECT_GT(aboveSurface(1.0f), aboveSurface(0.95f) + 25);
}

TEST(MagmaVUMeterView, LeftAndRightCrustsDifferAtTheSameLevel) {
    const MagmaCanvas c = magmaCanvas();
    const QRectF channel(QPointF(c.centre - 2 * c.halfWidth, c.top - 40),
                         QPointF(c.centre + 2 * c.halfWidth, c.bottom));
    EXPECT_EQ(crop(renderMeter<MagmaVUMeterView>(0.01f, "L"), channel),
              crop(renderMeter<MagmaVUMeterView>(0.01f, "R"), channel));
    EXPECT_NE(crop(renderMeter<MagmaVUMeterView>(0.6f, "L"), channel),
              crop(renderMeter<MagmaVUMeterView>(0.6f, "R"), channel));
}

TEST(StormVUMeterView, ForksFromOneFifthAndFourFromFourFifths) {
    EXPECT_EQ(StormVUMeterView::forkCount(0.19), 0);
    EXPECT_EQ(StormVUMeterView::forkCount(0.2), 1);
    EXPECT_EQ(StormVUMeterView::forkCount(0.59), 2);
    EXPECT_EQ(StormVUMeterView::forkCount(0.79), 3);
    EXPECT_EQ(StormVUMeterView::forkCount(0.8), 4);
    EXPECT_EQ(StormVUMeterView::forkCount(1.5), 4);
    // A fork leaves the bolt: at 0.2 something stands off the bolt's path brighter than anything
    // there at 0.19, where only the bolt's own glow reaches.
    const QSizeF canvas = meterSize - QSizeF(12, 12);
    const auto offBolt = [&](float level) {
        StormVUMeterView meter(QStringLiteral("L"));
        meter.setLevel(level);
        const QPolygonF bolt = meter.bolt(canvas).translated(6, 6);
        QPainterPath path;
        path.addPolygon(bolt);
        QPainterPathStroker stroker;
        stroker.setWidth(16);
        const QPainterPath near = stroker.createStroke(path);
        const QImage image = renderMeter<StormVUMeterView>(level);
        double brightest = 0;
        // Below the legend and above the scale.
        for (double y = 6 + 0.15 * canvas.height(); y < 6 + 0.66 * canvas.height(); y += 1)
            for (double x = 6; x < 6 + canvas.width(); x += 1)
                if (!near.contains(QPointF(x, y)))
                    brightest = std::max(brightest, probe::brightness(probe::at(image, {x, y})));
        return brightest;
    };
    const double boltAlone = offBolt(0.19f);
    EXPECT_LT(boltAlone, 130);
    EXPECT_GT(offBolt(0.2f), boltAlone + 12);
}

TEST(StormVUMeterView, ShootsFromTheLeftAsFarAsTheLevel) {
    const QSizeF canvas = meterSize - QSizeF(12, 12);
    StormVUMeterView meter(QStringLiteral("R"));
    meter.setLevel(0.5f);
    const QPolygonF bolt = meter.bolt(canvas);
    ASSERT_EQ(bolt.size(), 17);
    EXPECT_DOUBLE_EQ(bolt.front().x(), 0.07 * canvas.width());
    EXPECT_DOUBLE_EQ(bolt.back().x(), 0.07 * canvas.width() + 0.86 * canvas.width() * 0.5);
    // Pinned near the axis at both ends.
    EXPECT_NEAR(bolt.front().y(), 0.48 * canvas.height(), 0.02 * canvas.height());
    EXPECT_NEAR(bolt.back().y(), 0.48 * canvas.height(), 0.02 * canvas.height());
    const QImage image = renderMeter<StormVUMeterView>(0.5f, "R");
    EXPECT_GT(probe::brightness(probe::at(image, bolt[8] + QPointF(6, 6))), 150);
    // Nothing beyond the tip on the axis.
    EXPECT_LT(probe::brightness(
                  probe::at(image, QPointF(6 + 0.8 * canvas.width(), 6 + 0.48 * canvas.height()))),
              60);
}

TEST(HoloVUMeterView, ReadsTheLevelInVU) {
    EXPECT_EQ(HoloVUMeterView::vuReadout(0.0f), "-20.0");
    EXPECT_EQ(HoloVUMeterView::vuReadout(-0.5f), "-20.0");
    EXPECT_EQ(HoloVUMeterView::vuReadout(std::nanf("")), "-20.0");
    EXPECT_EQ(HoloVUMeterView::vuReadout(0.3f), "-10.0");
    EXPECT_EQ(HoloVUMeterView::vuReadout(0.425f), "-7.5");
    EXPECT_EQ(HoloVUMeterView::vuReadout(0.55f), "-5.0");
    EXPECT_EQ(HoloVUMeterView::vuReadout(0.78f), "+0.0");
    EXPECT_EQ(HoloVUMeterView::vuReadout(0.89f), "+1.5");
    EXPECT_EQ(HoloVUMeterView::vuReadout(1.0f), "+3.0");
    EXPECT_EQ(HoloVUMeterView::vuReadout(7.0f), "+3.0");
}

TEST(HoloVUMeterView, SweepsItsArcFromLowerLeftThroughTheTop) {
    // The gauge circle of a 310 x 200 view: inset 13, centred, radius 87.
    const QSizeF size(310, 200);
    const QPointF centre(155, 100);
    const double radius = 87;
    const auto arcAt = [&](float level, double degrees) {
        HoloVUMeterView meter(QStringLiteral("L"));
        meter.setLevel(level);
        meter.settle();
        const QImage image =
            probe::render(size, [&](QPainter& painter) { meter.paint(painter, size); });
        const double a = degrees * M_PI / 180;
        return probe::at(image, centre + QPointF(std::cos(a), std::sin(a)) * radius);
    };
    // Empty: only the faint track at the top.
    EXPECT_LT(probe::brightness(arcAt(0.0f, 270)), 60);
    // Half way (120 degrees of 240) reaches straight up, violet-blue; the start stays cyan.
    const QColor top = arcAt(0.5f, 268);
    EXPECT_GT(top.blue(), 200);
    const QColor start = arcAt(0.5f, 160);
    EXPECT_GT(start.green(), 120);
    EXPECT_LT(probe::brightness(arcAt(0.5f, 300)), 90);
    // Full: the end at the lower right is pink.
    const QColor end = arcAt(1.0f, 25);
    EXPECT_GT(end.red(), 200);
    EXPECT_LT(end.green(), 120);
}

TEST(RetroVUMeterView, SwingsFortyTwoDegreesEitherSideOfUpright) {
    // 300 x 220: the meter area is 284 x 204 at (8, 8); pivot (0.5 w, 0.97 h), R = 0.62 h.
    const QSizeF size(300, 220);
    const QPointF pivot(8 + 142, 8 + 0.97 * 204);
    const double radius = 0.62 * 204;
    const auto needleAt = [&](float level, double degrees) {
        RetroVUMeterView meter(QStringLiteral("L"));
        meter.setLevel(level);
        meter.settle();
        const QImage image =
            probe::render(size, [&](QPainter& painter) { meter.paint(painter, size); });
        const double a = degrees * M_PI / 180;
        // Between the hub and the scale, where only the needle is dark on the lamp.
        return probe::brightness(
            probe::at(image, pivot + QPointF(std::cos(a), std::sin(a)) * 0.75 * radius));
    };
    for (const auto& [level, degrees] : {std::pair{0.0f, -132.0}, std::pair{0.72f, -71.52},
                                         std::pair{1.0f, -48.0}, std::pair{1.4f, -48.0}}) {
        EXPECT_LT(needleAt(level, degrees), 60) << level;
        EXPECT_GT(needleAt(level, degrees + 8), 120) << level;
    }
}

}  // namespace
}  // namespace corvanel::meters
