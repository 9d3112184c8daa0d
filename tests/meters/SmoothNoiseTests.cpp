#include <gtest/gtest.h>

#include <cmath>

#include "meters/candlelight/SmoothNoise.h"
#include "meters/kit/Noise.h"

namespace corvanel::meters {
namespace {

TEST(SmoothNoise, PassesThroughTheLatticeAndStaysInRange) {
    // On the integer lattice the field is the integer noise of its (seeded) corner.
    EXPECT_DOUBLE_EQ(smoothNoise(3, -7, 0), noise(3, -7));
    EXPECT_DOUBLE_EQ(smoothNoise(-12, 40, 0), noise(-12, 40));
    for (int i = 0; i < 2000; ++i) {
        const double x = i * 0.173 - 150;
        const double y = i * 0.291 - 90;
        const double v = smoothNoise(x, y, 5);
        EXPECT_GE(v, -1.0);
        EXPECT_LE(v, 1.0);
        const double f = fractalNoise(x, y, 4, 5);
        EXPECT_GE(f, -1.0);
        EXPECT_LE(f, 1.0);
    }
}

TEST(SmoothNoise, IsContinuousAndDependsOnItsSeed) {
    double largestStep = 0;
    for (int i = 0; i < 4000; ++i) {
        const double x = i * 0.001 + 0.5;
        largestStep = std::max(largestStep,
                               std::abs(smoothNoise(x + 0.001, 2.25, 1) - smoothNoise(x, 2.25, 1)));
    }
    // A value step of at most 2 across one cell, spread smoothly over it.
    EXPECT_LT(largestStep, 0.004);
    int differing = 0;
    for (int i = 0; i < 50; ++i)
        differing += smoothNoise(i + 0.5, 0.5, 1) != smoothNoise(i + 0.5, 0.5, 2);
    EXPECT_GT(differing, 45);
    EXPECT_EQ(fractalNoise(1.3, 2.7, 3, 9), fractalNoise(1.3, 2.7, 3, 9));
}

}  // namespace
}  // namespace corvanel::meters
