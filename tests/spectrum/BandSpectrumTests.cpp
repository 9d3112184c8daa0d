#include "spectrum/BandSpectrum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

namespace corvanel {
namespace {

void fillSine(BandSpectrum& spectrum, double frequency, double rate, float amplitude) {
    const std::span<float> input = spectrum.input();
    for (std::size_t n = 0; n < input.size(); ++n)
        input[n] = amplitude * static_cast<float>(std::sin(2.0 * std::numbers::pi * frequency *
                                                           static_cast<double>(n) / rate));
}

std::size_t loudestBand(const BandSpectrum::Targets& targets) {
    return static_cast<std::size_t>(std::max_element(targets.begin(), targets.end()) -
                                    targets.begin());
}

TEST(BandSpectrum, WindowIsThePeriodicHann) {
    const auto& window = BandSpectrum::window();
    EXPECT_EQ(window[0], 0.0f);
    EXPECT_FLOAT_EQ(window[2048], 1.0f);
    EXPECT_FLOAT_EQ(window[1024], 0.5f);
    EXPECT_FLOAT_EQ(window[1], window[4095]);  // periodic: symmetric about N/2, not (N-1)/2
    const double meanSquare =
        std::accumulate(window.begin(), window.end(), 0.0,
                        [](double sum, float w) { return sum + double{w} * w; }) /
        4096.0;
    EXPECT_NEAR(meanSquare, 0.375, 1e-6);
}

TEST(BandSpectrum, PowerMapsLinearlyInDecibelsFromMinus60To0) {
    EXPECT_FLOAT_EQ(BandSpectrum::levelOfPower(0.375f), 1.0f);
    EXPECT_FLOAT_EQ(BandSpectrum::levelOfPower(0.375f * 4.0f), 1.0f);
    EXPECT_NEAR(BandSpectrum::levelOfPower(0.375f * 0.01f), 40.0f / 60.0f, 1e-5);
    EXPECT_NEAR(BandSpectrum::levelOfPower(0.375e-6f), 0.0f, 1e-5);
    EXPECT_EQ(BandSpectrum::levelOfPower(0.0f), 0.0f);
    // An overflowing transform: no number reads as nothing, an infinite power as full scale.
    EXPECT_EQ(BandSpectrum::levelOfPower(std::numeric_limits<float>::quiet_NaN()), 0.0f);
    EXPECT_EQ(BandSpectrum::levelOfPower(std::numeric_limits<float>::infinity()), 1.0f);
}

TEST(BandSpectrum, FullScaleSineAtABinCentreFillsItsBandAndNoOther) {
    BandSpectrum spectrum;
    ASSERT_TRUE(spectrum.isReady());
    fillSine(spectrum, 88 * 48000.0 / 4096, 48000, 1.0f);  // bin 88, inside band 23
    const BandSpectrum::Targets targets = spectrum.computeTargets(48000);
    EXPECT_NEAR(targets[23], 1.0f, 1e-4);
    // Band 24 starts at bin 95, well clear of the window's main lobe (bins 87 ... 89).
    EXPECT_EQ(targets[24], 0.0f);
    EXPECT_EQ(targets[21], 0.0f);
    EXPECT_EQ(targets[0], 0.0f);
}

TEST(BandSpectrum, QuieterSineLandsAtItsLevelOnTheScale) {
    BandSpectrum spectrum;
    fillSine(spectrum, 88 * 48000.0 / 4096, 48000, 0.1f);  // −20 dBFS
    EXPECT_NEAR(spectrum.computeTargets(48000)[23], 40.0f / 60.0f, 1e-4);
}

TEST(BandSpectrum, OffBinSinesLandInTheBandAroundThem) {
    // From band 14 up a band spans several bins; below, bands share their one or two bins
    // and a tone shows in whichever neighbour holds more of its main lobe.
    BandSpectrum spectrum;
    for (const std::size_t band : {14u, 18u, 23u, 31u, 37u}) {
        for (const double rate : {44100.0, 48000.0}) {
            fillSine(spectrum, SpectrumScale::bandCenters()[band], rate, 0.5f);
            const BandSpectrum::Targets targets = spectrum.computeTargets(rate);
            EXPECT_EQ(loudestBand(targets), band) << "rate " << rate;
            // −6 dBFS: about 0.9 of the scale once the band holds the whole main lobe.
            EXPECT_NEAR(targets[band], 0.9f, 0.03f) << "band " << band << " rate " << rate;
        }
    }
}

TEST(BandSpectrum, SilenceAndDcShowNothing) {
    BandSpectrum spectrum;
    std::fill(spectrum.input().begin(), spectrum.input().end(), 0.0f);
    for (const float target : spectrum.computeTargets(44100))
        EXPECT_EQ(target, 0.0f);
    // A constant offset lives in bin 0, which no band uses; its window leakage reaches only
    // bin 1, which the lowest bands share, at a quarter of the amplitude.
    std::fill(spectrum.input().begin(), spectrum.input().end(), 0.001f);
    const BandSpectrum::Targets targets = spectrum.computeTargets(44100);
    EXPECT_LT(*std::max_element(targets.begin() + 3, targets.end()), 1e-6f);
}

}  // namespace
}  // namespace corvanel
