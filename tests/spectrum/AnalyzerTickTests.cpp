// The analysis tick on virtual time: band levels, peak hold and channel meters, tick by tick,
// fed through the simulated tap exactly as a capture would feed them.
#include <gtest/gtest.h>

#include <cmath>

#include "SpectrumTestWorld.h"

namespace corvanel {
namespace {

using testing::SpectrumTestWorld;

constexpr std::size_t toneBand = 23;  // 1031.25 Hz at 48 kHz

class AnalyzerTickTest : public ::testing::Test {
  protected:
    void SetUp() override {
        analyzer = world.makeAnalyzer();
        ASSERT_TRUE(analyzer->isCapturing());
    }

    SpectrumTestWorld world;
    std::shared_ptr<SpectrumAnalyzer> analyzer;
};

TEST_F(AnalyzerTickTest, BandsWaitForAFullBlockWhileTheMetersMoveAtOnce) {
    world.tone->leftAmplitude = world.tone->rightAmplitude = 1.0f;
    for (int i = 0; i < 7; ++i)
        world.taps->deliverBlock();  // 3584 frames: not enough to transform
    world.tick();
    for (std::size_t band = 0; band < SpectrumAnalyzer::bandCount; ++band) {
        EXPECT_EQ(analyzer->levels()[band], 0.0f);
        EXPECT_EQ(analyzer->peaks()[band], 0.0f);
    }
    EXPECT_GT(analyzer->leftLevel(), 0.3f);

    world.taps->deliverBlock();
    world.tick();
    EXPECT_NEAR(analyzer->levels()[toneBand], 0.41f, 1e-3);
}

TEST_F(AnalyzerTickTest, AFullScaleToneRisesQuicklyAndFallsAtMostFivePointsPerTick) {
    world.tone->leftAmplitude = world.tone->rightAmplitude = 1.0f;
    world.deliverAnalysisBlock();
    for (const float expected : {0.41f, 0.652f, 0.795f}) {
        world.tick();
        EXPECT_NEAR(analyzer->levels()[toneBand], expected, 1e-3);
        EXPECT_EQ(analyzer->peaks()[toneBand], analyzer->levels()[toneBand]);
    }
    EXPECT_EQ(analyzer->levels()[toneBand + 2], 0.0f);
    for (int i = 0; i < 30; ++i)
        world.tick();
    const float top = analyzer->levels()[toneBand];
    EXPECT_NEAR(top, 1.0f, 1e-5);

    world.tone->leftAmplitude = world.tone->rightAmplitude = 0.0f;
    world.deliverAnalysisBlock();
    for (int k = 1; k <= 20; ++k) {
        world.tick();
        EXPECT_NEAR(analyzer->levels()[toneBand], std::max(0.0f, top - 0.05f * k), 1e-5)
            << "tick " << k;
    }
    world.tick();
    EXPECT_EQ(analyzer->levels()[toneBand], 0.0f);
}

TEST_F(AnalyzerTickTest, APeakHoldsForOneSecondThenSinksToTheLevel) {
    world.tone->leftAmplitude = world.tone->rightAmplitude = 1.0f;
    world.deliverAnalysisBlock();
    for (int i = 0; i < 40; ++i)
        world.tick();
    const float peak = analyzer->peaks()[toneBand];
    ASSERT_NEAR(peak, 1.0f, 1e-5);

    world.tone->leftAmplitude = world.tone->rightAmplitude = 0.0f;
    world.deliverAnalysisBlock();
    // Last renewed on the tick before the silence; 30 ticks later is 0.99 s: still held.
    for (int k = 1; k <= 30; ++k) {
        world.tick();
        ASSERT_EQ(analyzer->peaks()[toneBand], peak) << "tick " << k;
    }
    // 1.023 s after the renewal it starts to sink by 0.03 per tick ...
    for (int k = 1; k <= 10; ++k) {
        world.tick();
        EXPECT_NEAR(analyzer->peaks()[toneBand], peak - 0.03f * k, 1e-5) << "tick " << k;
    }
    // ... and stops on the level (0 by now), never below it.
    for (int k = 0; k < 30; ++k)
        world.tick();
    EXPECT_EQ(analyzer->peaks()[toneBand], 0.0f);
    EXPECT_EQ(analyzer->levels()[toneBand], 0.0f);
}

TEST_F(AnalyzerTickTest, LevelsSettleOnTheLastBlockWhenCaptureGoesQuiet) {
    world.tone->leftAmplitude = world.tone->rightAmplitude = 0.1f;  // −20 dBFS
    world.deliverAnalysisBlock();
    // Nothing more arrives: the spectrum keeps showing the ring's last 4096 samples.
    for (int i = 0; i < 90; ++i)
        world.tick();
    EXPECT_NEAR(analyzer->levels()[toneBand], 40.0f / 60.0f, 1e-3);
    EXPECT_NEAR(analyzer->peaks()[toneBand], 40.0f / 60.0f, 1e-3);
    // The channel meters, which look at the age of the data, have fallen to rest.
    EXPECT_LT(analyzer->leftLevel(), 1e-4f);
}

TEST_F(AnalyzerTickTest, ChannelMetersFollowEachSideAndFallOnceCaptureStalls) {
    // −24 dBFS RMS on the left (0.30 of the VU scale), −14 dBFS on the right (0.78).
    world.tone->leftAmplitude = static_cast<float>(std::pow(10.0, -24.0 / 20.0) * std::sqrt(2.0));
    world.tone->rightAmplitude = static_cast<float>(std::pow(10.0, -14.0 / 20.0) * std::sqrt(2.0));
    world.taps->deliverBlock();  // at t = 0; ticks fall at 33 ms, 66 ms, ...

    float left = 0.0f;
    float right = 0.0f;
    for (int tick = 1; tick <= 9; ++tick) {  // up to 297 ms: the block is still fresh
        world.tick();
        left += (0.30f - left) * 0.33f;
        right += (0.78f - right) * 0.33f;
        EXPECT_NEAR(analyzer->leftLevel(), left, 2e-4) << "tick " << tick;
        EXPECT_NEAR(analyzer->rightLevel(), right, 2e-4) << "tick " << tick;
    }
    for (int tick = 10; tick <= 14; ++tick) {  // 330 ms on: stalled, both fall by 0.13
        world.tick();
        left *= 0.87f;
        right *= 0.87f;
        EXPECT_NEAR(analyzer->leftLevel(), left, 2e-4) << "tick " << tick;
        EXPECT_NEAR(analyzer->rightLevel(), right, 2e-4) << "tick " << tick;
    }
}

TEST_F(AnalyzerTickTest, FreshSilenceDrivesTheMetersToRest) {
    world.tone->leftAmplitude = world.tone->rightAmplitude = 0.5f;
    world.taps->deliverBlock();
    world.tick();
    const float raised = analyzer->leftLevel();
    ASSERT_NEAR(raised, 0.33f, 1e-4);  // −9 dBFS is off the top of the scale: target 1

    world.tone->leftAmplitude = world.tone->rightAmplitude = 0.0f;
    float expected = raised;
    for (int tick = 0; tick < 5; ++tick) {
        world.taps->deliverBlock();
        world.tick();
        expected *= 0.87f;
        EXPECT_NEAR(analyzer->leftLevel(), expected, 1e-5);
        EXPECT_EQ(analyzer->leftLevel(), analyzer->rightLevel());
    }
}

TEST_F(AnalyzerTickTest, PublishesOncePerTick) {
    int published = 0;
    Connection connection = analyzer->valuesChanged.connect([&] { ++published; });
    world.executor->advanceBy(Seconds{0.033 * 10});
    EXPECT_EQ(published, 10);
    EXPECT_EQ(analyzer->levels().size(), 40u);
    EXPECT_EQ(analyzer->peaks().size(), 40u);
}

TEST(AnalyzerLifetime, TheLoopEndsQuietlyWhenTheAnalyzerIsGone) {
    SpectrumTestWorld world;
    std::weak_ptr<SpectrumAnalyzer> weak = world.makeAnalyzer();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(world.taps->liveObjectCount(), 0u);  // its pipeline went with it
    world.executor->advanceBy(Seconds{1});
    EXPECT_EQ(world.executor->pendingCount(), 0u);
}

}  // namespace
}  // namespace corvanel
