#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <optional>

#include "meters/Probe.h"
#include "meters/candlelight/CandleRoomLayout.h"
#include "meters/candlelight/CandlelightScene.h"
#include "meters/kit/Noise.h"

namespace corvanel::meters {
namespace {

void application() {}

// A plain dark room of the real picture's size, so that probes see only what the scene adds.
QImage darkRoom() {
    QImage room(1600, 1000, QImage::Format_ARGB32_Premultiplied);
    room.fill(QColor(10, 10, 10));
    return room;
}

QImage render(const std::vector<float>& levels, double time, QSize size,
              const QImage& room = darkRoom()) {
    application();
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    CandlelightLayers layers;
    QPainter painter(&image);
    CandlelightScene(levels, time).paint(painter, QSizeF(size), room, layers);
    return image;
}

constexpr double frameTime = 785'000'000.0;

TEST(FlameAnchors, FollowTheSizeAndBandRule) {
    const auto& anchors = CandlelightScene::anchors();
    ASSERT_EQ(anchors.size(), 49u);
    struct Row {
        int index;
        double size;
        int band;
    };
    for (const Row row :
         {Row{0, 0.01400, 39}, Row{3, 0.01420, 36}, Row{6, 0.01672, 34}, Row{11, 0.01778, 30},
          Row{16, 0.01845, 26}, Row{20, 0.02444, 22}, Row{22, 0.02501, 21}, Row{38, 0.02836, 8},
          Row{47, 0.03627, 0}, Row{48, 0.04000, 0}}) {
        const FlameAnchor& a = anchors[static_cast<std::size_t>(row.index)];
        EXPECT_EQ(a.index, row.index);
        EXPECT_NEAR(a.size, row.size, 0.000006) << row.index;
        EXPECT_EQ(a.band, row.band) << row.index;
        EXPECT_EQ(a.x, candleWicks()[static_cast<std::size_t>(row.index)].x());
    }
    // Bigger flames never follow higher bands than smaller ones.
    for (const FlameAnchor& a : anchors) {
        for (const FlameAnchor& b : anchors) {
            if (a.size > b.size) {
                EXPECT_LE(a.band, b.band) << a.index << " " << b.index;
            }
        }
    }
}

TEST(FlameAnchors, SpreadAnyBandCountFromLargestToSmallest) {
    const auto anchors = buildFlameAnchors(10);
    EXPECT_EQ(anchors[48].band, 0);  // the largest flame
    EXPECT_EQ(anchors[0].band, 9);   // the smallest, and last in the sorted order
    for (const FlameAnchor& a : anchors)
        EXPECT_LT(a.band, 10);
    for (const FlameAnchor& a : buildFlameAnchors(1))
        EXPECT_EQ(a.band, 0);
}

TEST(CandlelightScene, FlamesStandOnTheirWicksWhereverThePictureIsCropped) {
    // 1600 x 1000 shows the whole picture; 2000 x 800 crops it top and bottom.
    for (const QSize size : {QSize(1600, 1000), QSize(2000, 800)}) {
        const QImage frame = render(std::vector<float>(40, 0.0f), frameTime, size);
        const double drawnHeight = size.width() / 1.6;
        const double top = (size.height() - drawnHeight) / 2;
        for (const FlameAnchor& a : CandlelightScene::anchors()) {
            const double u = drawnHeight * a.size;
            const QPointF base(size.width() * a.x, top + drawnHeight * a.y);
            if (base.y() < 0 || base.y() >= size.height()) continue;
            // Inside the white core, a little above the wick; the core is 0.55 of the idle flame.
            const QColor core = frame.pixelColor((base + QPointF(0, -0.12 * u)).toPoint());
            EXPECT_GT(core.blue(), 120) << "flame " << a.index << " at " << size.width();
            // Below the wick there is only glow, never flame.
            const QColor below = frame.pixelColor((base + QPointF(0, 0.5 * u)).toPoint());
            EXPECT_LT(below.blue(), 90) << "flame " << a.index << " at " << size.width();
        }
    }
}

TEST(CandlelightScene, OnlyTheLowCandlesThrowReflections) {
    application();
    const CandlelightScene scene(std::vector<float>(40, 1.0f), frameTime);
    const QSizeF size(1600, 1000);
    for (const FlameAnchor& a : CandlelightScene::anchors()) {
        QImage image(size.toSize(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::black);
        QPainter painter(&image);
        scene.drawGlow(a, painter, QPointF(0, 0), size);
        painter.end();
        // Just inside the reflection's top, beyond the reach of the flame's halo.
        const double u = size.height() * a.size;
        const QPoint probe(static_cast<int>(size.width() * a.x),
                           static_cast<int>(size.height() * a.y + 4.6 * u));
        if (!image.rect().contains(probe)) continue;
        const int red = image.pixelColor(probe).red();
        if (a.index >= 20) {
            EXPECT_GT(red, 20) << "flame " << a.index;
        } else {
            EXPECT_EQ(red, 0) << "flame " << a.index;
        }
    }
}

TEST(CandlelightScene, SnowFallsOnlyBehindTheGlass) {
    application();
    const QSizeF size(1600, 1000);
    const auto& panes = windowPanes();
    int flakes = 0;
    for (const double t : {frameTime, frameTime + 3.3, frameTime + 17.9}) {
        QImage image(size.toSize(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        CandlelightScene({}, t).drawSnow(painter, QPointF(0, 0), size);
        painter.end();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (qAlpha(image.pixel(x, y)) == 0) continue;
                ++flakes;
                const QPointF centre((x + 0.5) / size.width(), (y + 0.5) / size.height());
                const bool inPane = std::any_of(panes.begin(), panes.end(), [&](const QRectF& p) {
                    return p.adjusted(-0.001, -0.001, 0.001, 0.001).contains(centre);
                });
                ASSERT_TRUE(inPane) << "snow at " << x << ", " << y;
            }
        }
    }
    EXPECT_GT(flakes, 100);
}

TEST(CandlelightScene, SameInputsPaintTheSameFrame) {
    const std::vector<float> levels = {0.1f, 0.8f, 0.4f, 0.0f, 0.3f};
    const QImage first = render(levels, frameTime + 0.25, QSize(480, 300));
    EXPECT_EQ(first, render(levels, frameTime + 0.25, QSize(480, 300)));

    // Kept layers do not change what a frame shows.
    application();
    CandlelightLayers layers;
    QImage again(480, 300, QImage::Format_ARGB32_Premultiplied);
    for (int pass = 0; pass < 2; ++pass) {
        again.fill(Qt::black);
        QPainter painter(&again);
        CandlelightScene(levels, frameTime + 0.25)
            .paint(painter, QSizeF(480, 300), darkRoom(), layers);
    }
    EXPECT_EQ(first, again);
}

TEST(CandlelightScene, LevelsAreReadTheWayTheFlamesNeedThem) {
    const QSize size(480, 300);
    const double t = frameTime + 1.0;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    // Silence: no levels, zeros, negative levels and not-a-number all burn at idle.
    const QImage idle = render({}, t, size);
    EXPECT_EQ(idle, render(std::vector<float>(40, 0.0f), t, size));
    EXPECT_EQ(idle, render(std::vector<float>(40, -0.5f), t, size));
    EXPECT_EQ(idle, render(std::vector<float>(40, nan), t, size));
    // Two thirds already drive a flame to full size; so does anything above (only the room
    // glow, which follows the mean level, tells them apart).
    const auto flamesOnly = [&](float level) {
        const CandlelightScene scene(std::vector<float>(40, level), t);
        return probe::render(QSizeF(size), [&](QPainter& painter) {
            for (const FlameAnchor& a : CandlelightScene::anchors()) {
                scene.drawGlow(a, painter, QPointF(), QSizeF(size));
                scene.drawFlame(a, painter, QPointF(), QSizeF(size));
            }
        });
    };
    EXPECT_EQ(flamesOnly(0.7f), flamesOnly(0.8f));
    EXPECT_NE(flamesOnly(0.6f), flamesOnly(0.7f));
    // A single entry feeds every flame whose band lies beyond it.
    EXPECT_EQ(render({0.4f}, t, size), render(std::vector<float>(40, 0.4f), t, size));
    EXPECT_NE(idle, render(std::vector<float>(40, 0.4f), t, size));
}

TEST(CandlelightScene, TheRoomGlowsWithTheLoudnessAndTheSnowKeepsFalling) {
    // Between the candle groups on the floor, far from every flame's halo.
    const QPoint floor(960, 560);
    const QSize size(1600, 1000);
    const auto glowAt = [&](float level, double t) {
        return render(std::vector<float>(40, level), t, size).pixelColor(floor);
    };
    const QColor silent = glowAt(0.0f, frameTime);
    const QColor loud = glowAt(1.0f, frameTime);
    EXPECT_GT(loud.red(), silent.red() + 10);
    EXPECT_GT(loud.red(), loud.blue());
    // Silence still leaves the faint glow, the same at any moment.
    EXPECT_EQ(silent, glowAt(0.0f, frameTime + 7.3));
}

// frac(z) = z - trunc(z), as the flakes' fractions are taken.
double fraction(double z) {
    return z - std::trunc(z);
}

TEST(CandlelightScene, FlameTipsStandWhereLevelSizeAndFlickerPhasePutThem) {
    // Full level: e = 1. phi = t (0.8 (k mod 7) + 4.5); sway = sin(phi + pi noise(k, 9));
    // q = 24 + 31 band + trunc(2 phi); the tip is (bx + d, by - h) with
    // h = u (2.6 + 0.55 + 0.2 noise(q, 5) x 1.4), d = 1.6 (0.3 sway + 0.15 noise(q, 6)) w,
    // w = 0.48 u and u = size x the picture's height.
    const QSizeF size(1600, 1000);
    for (const double t : {frameTime + 0.1, frameTime + 0.37, frameTime + 1.9}) {
        const CandlelightScene scene(std::vector<float>(40, 1.0f), t);
        for (std::size_t k = 40; k < 49; ++k) {
            const FlameAnchor& a = CandlelightScene::anchors()[k];
            const double phi = t * (0.8 * (a.index % 7) + 4.5);
            const double sway = std::sin(phi + std::numbers::pi * noise(a.index, 9));
            const auto q = static_cast<std::int64_t>(24 + 31 * a.band + std::trunc(2 * phi));
            const double u = size.height() * a.size;
            const QPointF tip(
                size.width() * a.x + 1.6 * (0.3 * sway + 0.15 * noise(q, 6)) * 0.48 * u,
                size.height() * a.y - u * (3.15 + 0.28 * noise(q, 5)));
            const QImage flame = probe::render(
                size, [&](QPainter& painter) { scene.drawFlame(a, painter, QPointF(), size); });
            // The topmost well-covered pixel of the flame lies just under its pointed tip.
            std::optional<QPoint> top;
            for (int y = 0; y < flame.height() && !top; ++y)
                for (int x = int(tip.x() - 2 * u); x <= int(tip.x() + 2 * u) && !top; ++x)
                    if (qAlpha(flame.pixel(x, y)) > 100) top = QPoint(x, y);
            ASSERT_TRUE(top.has_value()) << "flame " << k;
            EXPECT_NEAR(top->y(), tip.y() + 1.5, 2.5) << "flame " << k << " at " << t;
            EXPECT_NEAR(top->x(), tip.x(), 2.5) << "flame " << k << " at " << t;
        }
    }
}

TEST(CandlelightScene, SnowflakesFallAndDriftOnTheirOwnCourses) {
    // A picture 4000 x 2000 placed so that its snow box, (0.4575, 0.0354) and 0.0778 x 0.4673
    // of it, starts at the canvas's corner.
    const QSizeF drawn(4000, 2000);
    const QPointF origin(-0.4575 * drawn.width(), -0.0354 * drawn.height());
    const double boxWidth = 0.0778 * drawn.width();
    const double boxHeight = 0.4673 * drawn.height();
    const double columns[2][2] = {{0.4575, 0.4971}, {0.5054, 0.5353}};
    const double rows[4][2] = {
        {0.0354, 0.0691}, {0.0815, 0.1878}, {0.2019, 0.3188}, {0.3348, 0.5027}};
    const auto insidePane = [&](QPointF p, double margin) {
        const double fx = (p.x() - origin.x()) / drawn.width();
        const double fy = (p.y() - origin.y()) / drawn.height();
        const double mx = margin / drawn.width(), my = margin / drawn.height();
        bool inColumn = false, inRow = false;
        for (const auto& c : columns)
            inColumn = inColumn || (fx > c[0] + mx && fx < c[1] - mx);
        for (const auto& r : rows)
            inRow = inRow || (fy > r[0] + my && fy < r[1] - my);
        return inColumn && inRow;
    };
    for (const double t : {frameTime, frameTime + 3.3, frameTime + 41.7}) {
        const QImage snow = probe::render(QSizeF(boxWidth + 2, boxHeight + 2), [&](QPainter& p) {
            CandlelightScene({}, t).drawSnow(p, origin, drawn);
        });
        int visible = 0;
        for (int i = 0; i < 70; ++i) {
            const double p1 = (noise(i, 71) + 1) / 2;
            const double p2 = (noise(i, 72) + 1) / 2;
            const double p3 = noise(i, 73);
            const double fy = fraction(7 * p1 + t * (0.035 + 0.055 * p2));
            double fx = fraction(p1 + (p2 + 0.4) * std::sin(0.7 * t + 10 * p3) * 0.03);
            if (fx < 0) fx += 1;
            const double r = drawn.height() * (0.0009 + 0.0016 * p2);
            const QPointF centre(boxWidth * fx, boxHeight * fy);
            if (!insidePane(centre, r + 1)) continue;
            ++visible;
            EXPECT_GE(qAlpha(snow.pixel(centre.toPoint())), int(0.7 * 255 * (0.28 + 0.42 * p2)))
                << "flake " << i << " at " << t;
        }
        EXPECT_GE(visible, 12) << t;
    }
}

TEST(CandlelightScene, LoudnessIsTheMeanOfTheClampedLevels) {
    EXPECT_EQ(CandlelightScene({}, 0).loudness(), 0.0f);
    EXPECT_FLOAT_EQ(CandlelightScene({0.5f, 2.0f, -1.0f, 0.5f}, 0).loudness(), 0.5f);
    EXPECT_FLOAT_EQ(CandlelightScene({std::numeric_limits<float>::quiet_NaN(), 1.0f}, 0).loudness(),
                    0.5f);
}

TEST(CandlelightScene, WithoutAPictureNothingIsDrawn) {
    const QImage frame = render(std::vector<float>(40, 1.0f), frameTime, QSize(320, 200), QImage());
    QImage black(320, 200, QImage::Format_ARGB32_Premultiplied);
    black.fill(Qt::black);
    EXPECT_EQ(frame, black);
}

}  // namespace
}  // namespace corvanel::meters
