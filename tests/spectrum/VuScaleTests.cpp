#include "spectrum/LevelDynamics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace corvanel {
namespace {

using LevelDynamics::vuFraction;

TEST(VuScale, TablePointsAndInterpolation) {
    EXPECT_FLOAT_EQ(vuFraction(-34.0f), 0.0f);
    EXPECT_FLOAT_EQ(vuFraction(-24.0f), 0.30f);
    EXPECT_FLOAT_EQ(vuFraction(-19.0f), 0.55f);
    EXPECT_FLOAT_EQ(vuFraction(-14.0f), 0.78f);
    EXPECT_FLOAT_EQ(vuFraction(-11.0f), 1.0f);
    EXPECT_FLOAT_EQ(vuFraction(-29.0f), 0.15f);  // halfway from −20 VU to −10 VU
    EXPECT_FLOAT_EQ(vuFraction(-12.5f), 0.89f);  // halfway from 0 VU to +3 VU
}

TEST(VuScale, OutsideTheScaleItPinsToTheEnds) {
    EXPECT_EQ(vuFraction(-40.0f), 0.0f);
    EXPECT_EQ(vuFraction(-180.0f), 0.0f);
    EXPECT_EQ(vuFraction(-5.0f), 1.0f);
    EXPECT_EQ(vuFraction(std::numeric_limits<float>::quiet_NaN()), 0.0f);
    EXPECT_EQ(vuFraction(-std::numeric_limits<float>::infinity()), 0.0f);
}

TEST(BandSmoothing, RisesByFortyOnePercentAndFallsAtMostFivePointsPerTick) {
    float level = 0.0f;
    const float rising[] = {0.41f, 0.6519f, 0.794621f};
    for (const float expected : rising) {
        level = LevelDynamics::smoothBand(level, 1.0f);
        EXPECT_NEAR(level, expected, 1e-5);
    }
    level = 1.0f;
    for (const float expected : {0.95f, 0.90f, 0.85f}) {
        level = LevelDynamics::smoothBand(level, 0.0f);
        EXPECT_NEAR(level, expected, 1e-6);
    }
    // A fall smaller than the limit lands on the target; steady stays put.
    EXPECT_FLOAT_EQ(LevelDynamics::smoothBand(0.5f, 0.48f), 0.48f);
    EXPECT_FLOAT_EQ(LevelDynamics::smoothBand(0.5f, 0.5f), 0.5f);
}

TEST(ChannelBallistics, ClimbsFasterThanItDrops) {
    EXPECT_FLOAT_EQ(LevelDynamics::meterBallistics(0.0f, 1.0f), 0.33f);
    EXPECT_FLOAT_EQ(LevelDynamics::meterBallistics(1.0f, 0.0f), 0.87f);
    EXPECT_FLOAT_EQ(LevelDynamics::meterBallistics(0.5f, 0.5f), 0.5f);
    EXPECT_FLOAT_EQ(LevelDynamics::fallWithoutData(0.1f), 0.06f);
    EXPECT_EQ(LevelDynamics::fallWithoutData(0.03f), 0.0f);
}

}  // namespace
}  // namespace corvanel
