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

TEST(LevelMotion, ATargetThatIsNotALevelLeavesTheValueWhereItWas) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float inf = std::numeric_limits<float>::infinity();
    for (const float target : {nan, inf, -inf}) {
        EXPECT_EQ(LevelDynamics::smoothBand(0.5f, target), 0.5f) << target;
        EXPECT_EQ(LevelDynamics::meterBallistics(0.5f, target), 0.5f) << target;
    }
    EXPECT_FLOAT_EQ(LevelDynamics::smoothBand(0.5f, 1.0f), 0.705f);  // real targets still move it
}

}  // namespace
}  // namespace corvanel
