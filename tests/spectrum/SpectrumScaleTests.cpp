#include "spectrum/SpectrumScale.h"

#include <gtest/gtest.h>

#include <cmath>

#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel {
namespace {

TEST(SpectrumScale, BandCentresRunGeometricallyFrom20HzTo16kHz) {
    const auto& centers = SpectrumAnalyzer::bandCenters();
    ASSERT_EQ(centers.size(), 40u);
    EXPECT_DOUBLE_EQ(centers.front(), 20.0);
    EXPECT_NEAR(centers.back(), 16000.0, 1e-9);
    const double expectedRounded[] = {23.7, 28.2, 1030.6, 1223.3, 13479.7};
    EXPECT_NEAR(centers[1], expectedRounded[0], 0.05);
    EXPECT_NEAR(centers[2], expectedRounded[1], 0.05);
    EXPECT_NEAR(centers[23], expectedRounded[2], 0.05);
    EXPECT_NEAR(centers[24], expectedRounded[3], 0.05);
    EXPECT_NEAR(centers[38], expectedRounded[4], 0.05);
    for (std::size_t i = 1; i < centers.size(); ++i)
        EXPECT_NEAR(centers[i] / centers[i - 1], std::pow(800.0, 1.0 / 39.0), 1e-12);
}

TEST(SpectrumScale, AxisLabelsSitOnTheNearestBands) {
    const std::vector<FrequencyLabel> expected = {{3, "31"},   {7, "63"},  {11, "125"}, {15, "250"},
                                                  {19, "500"}, {23, "1K"}, {27, "2K"},  {31, "4K"},
                                                  {35, "8K"},  {39, "16K"}};
    const auto& labels = SpectrumScale::frequencyLabels();
    EXPECT_EQ(std::vector<FrequencyLabel>(labels.begin(), labels.end()), expected);
}

TEST(SpectrumScale, BandsGatherBinsHalfAStepEitherSideAt44100) {
    constexpr double rate = 44100;
    EXPECT_EQ(SpectrumScale::binRange(0, rate, 4096), (BinRange{1, 2}));
    EXPECT_EQ(SpectrumScale::binRange(1, rate, 4096), (BinRange{2, 2}));
    EXPECT_EQ(SpectrumScale::binRange(2, rate, 4096), (BinRange{2, 2}));
    EXPECT_EQ(SpectrumScale::binRange(39, rate, 4096), (BinRange{1364, 1619}));
}

TEST(SpectrumScale, BandsGatherBinsHalfAStepEitherSideAt48000) {
    constexpr double rate = 48000;
    EXPECT_EQ(SpectrumScale::binRange(0, rate, 4096), (BinRange{1, 1}));
    EXPECT_EQ(SpectrumScale::binRange(1, rate, 4096).lo, 1);
    EXPECT_EQ(SpectrumScale::binRange(39, rate, 4096), (BinRange{1253, 1487}));
    // Neighbours share their border bin.
    EXPECT_EQ(SpectrumScale::binRange(23, rate, 4096), (BinRange{80, 95}));
    EXPECT_EQ(SpectrumScale::binRange(24, rate, 4096).lo, 95);
}

TEST(SpectrumScale, BinsStayAboveDcAndBelowHalfTheTransform) {
    // At a low rate high bands reach past bin 2047 (the top ones entirely); at a very high
    // rate the lowest bands fall below bin 1. Either way what is left out is empty.
    EXPECT_EQ(SpectrumScale::binRange(31, 8000, 4096), (BinRange{1908, 2047}));
    EXPECT_TRUE(SpectrumScale::binRange(32, 8000, 4096).empty());
    EXPECT_TRUE(SpectrumScale::binRange(39, 8000, 4096).empty());
    EXPECT_TRUE(SpectrumScale::binRange(0, 400000, 4096).empty());
    EXPECT_FALSE(SpectrumScale::binRange(39, 400000, 4096).empty());
}

}  // namespace
}  // namespace corvanel
