// The tray's label pacing on virtual time.
#include <gtest/gtest.h>

#include <QColor>

#include "GuiApplication.h"
#include "app/LabelThrottle.h"
#include "platform/sim/VirtualTimeExecutor.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;

QImage solid(int shade) {
    QImage image(8, 8, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(shade, shade, shade));
    return image;
}

class LabelThrottleTest : public ::testing::Test {
  protected:
    std::shared_ptr<VirtualTimeExecutor> executor = std::make_shared<VirtualTimeExecutor>();
    std::vector<QImage> delivered;
    std::vector<double> times;
    LabelThrottle throttle{executor, Seconds{0.1}, [this](const QImage& image) {
                               delivered.push_back(image);
                               times.push_back(executor->elapsed().count());
                           }};
};

TEST_F(LabelThrottleTest, AnalyzerRateImagesReachTheItemAtMostTenTimesASecondEndingOnTheNewest) {
    for (int frame = 0; frame < 30; ++frame) {
        throttle.offer(solid(frame));
        executor->advanceBy(0.033s);
    }
    executor->advanceBy(0.2s);
    EXPECT_LE(delivered.size(), 11u);
    EXPECT_GE(delivered.size(), 9u);
    EXPECT_EQ(delivered.front(), solid(0));  // the first goes out at once
    EXPECT_EQ(delivered.back(), solid(29));
    for (std::size_t i = 1; i < times.size(); ++i)
        EXPECT_GE(times[i] - times[i - 1], 0.1 - 1e-9);
}

TEST_F(LabelThrottleTest, AnUnchangedImageIsNotSentAgain) {
    throttle.offer(solid(1));
    executor->advanceBy(1s);
    throttle.offer(solid(1));
    executor->advanceBy(1s);
    EXPECT_EQ(delivered.size(), 1u);

    // A change undone before its turn comes sends nothing either.
    throttle.offer(solid(2));
    executor->advanceBy(0.05s);
    throttle.offer(solid(3));
    throttle.offer(solid(2));
    executor->advanceBy(1s);
    EXPECT_EQ(delivered.size(), 2u);
    EXPECT_EQ(delivered.back(), solid(2));
}

TEST(LabelThrottleWithoutIntervalTest, EveryChangedImageGoesOutAtOnce) {
    testing::guiApplication();
    auto executor = std::make_shared<VirtualTimeExecutor>();
    int count = 0;
    LabelThrottle throttle(executor, Seconds{0}, [&](const QImage&) { ++count; });
    for (int frame = 0; frame < 5; ++frame)
        throttle.offer(solid(frame));
    EXPECT_EQ(count, 5);
}

}  // namespace
}  // namespace corvanel
