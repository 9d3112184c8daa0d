#include <gtest/gtest.h>

#include <QColor>
#include <algorithm>

#include "meters/Probe.h"
#include "meters/candlelight/CandleRoom.h"
#include "meters/candlelight/CandleRoomLayout.h"
#include "meters/candlelight/CandlelightScene.h"

namespace corvanel::meters {
namespace {

const QImage& room() {
    return candleRoom();
}

QColor at(const QImage& image, double x, double y) {
    return image.pixelColor(static_cast<int>(x * image.width()),
                            static_cast<int>(y * image.height()));
}

TEST(CandleRoom, IsPaintedTheSameEveryTime) {
    EXPECT_EQ(room().size(), QSize(1600, 1000));
    EXPECT_EQ(paintCandleRoom(QSize(1600, 1000)), room());
}

TEST(CandleRoom, ShowsTheNightThroughThePanesAndWoodBetweenThem) {
    const QImage& picture = room();
    for (const QRectF& pane : windowPanes()) {
        // Sampled near the top of each pane, where the sky is (away from moon, snowfield, frost).
        const QColor sky =
            at(picture, pane.left() + 0.2 * pane.width(), pane.top() + 0.08 * pane.height());
        EXPECT_GT(sky.blue(), sky.red()) << pane.top();
    }
    // The vertical mullion between the two columns, and the rails between the rows.
    for (const double y : {0.05, 0.15, 0.25, 0.42}) {
        const QColor mullion = at(picture, 0.5012, y);
        EXPECT_GT(mullion.red(), mullion.blue()) << y;
    }
    for (const double y : {0.0753, 0.19485, 0.3268}) {
        const QColor rail = at(picture, 0.476, y);
        EXPECT_GT(rail.red(), rail.blue()) << y;
    }
}

TEST(CandleRoom, HasALitCandleUnderEveryWick) {
    const QImage& picture = room();
    for (const FlameAnchor& a : CandlelightScene::anchors()) {
        // The tip glows (tiny, so look around it; dimmer in the dark corners); the wax below
        // catches the light, red candles included.
        const QPoint tip(static_cast<int>((a.x + 0.03 * a.size / 1.6) * picture.width()),
                         static_cast<int>(a.y * picture.height()));
        int glow = 0;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                glow = std::max(glow, picture.pixelColor(tip + QPoint(dx, dy)).red());
        EXPECT_GT(glow, 80) << "wick " << a.index;
        const QColor wax = at(picture, a.x, a.y + 0.6 * a.size);
        EXPECT_GT(wax.red(), 60) << "wick " << a.index;
    }
}

}  // namespace
}  // namespace corvanel::meters
