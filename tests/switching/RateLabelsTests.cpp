// The rate format, the three label rules and the duplicate test of detections.
#include <gtest/gtest.h>

#include <limits>

#include "switching/RateDetection.h"
#include "switching/RateLabels.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;

RateDetection detection(double rate, std::optional<std::int64_t> depth,
                        std::optional<std::int64_t> kbps) {
    return RateDetection{rate, depth, kbps, "Apple Music", WallTime{} + 1s, "message"};
}

TEST(FormatRate, WholeKilohertzWithoutFractionOthersWithOneDigit) {
    EXPECT_EQ(SwitcherEngine::format(44100), "44.1");
    EXPECT_EQ(formatRate(48000), "48");
    EXPECT_EQ(formatRate(705600), "705.6");
    EXPECT_EQ(formatRate(8000), "8");
    EXPECT_EQ(formatRate(0), "0");
    EXPECT_EQ(formatRate(176400), "176.4");
    EXPECT_EQ(formatRate(352800), "352.8");
    EXPECT_EQ(formatRate(44100.4), "44.1");
    EXPECT_EQ(formatRate(47999.9), "48.0");  // not whole, so one digit even when it rounds up
}

TEST(FormatRate, RatesNoDeviceReportsStillGiveAShortLabelWithoutASign) {
    // Beyond a 64-bit integer's range a whole number must not wrap into a negative label.
    for (const double rate :
         {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN(), 1e300,
          9.3e21, std::numeric_limits<double>::max()}) {
        const std::string label = formatRate(rate);
        EXPECT_FALSE(label.empty()) << rate;
        EXPECT_LE(label.size(), 20u) << rate;
        EXPECT_EQ(label.find('-'), std::string::npos) << label;
    }
}

TEST(LabelRules, DepthBeatsBitRateAndMissingValuesUseDashes) {
    EXPECT_EQ(detectedText(std::nullopt), "\u2014");
    EXPECT_EQ(detectedText(detection(44100, 24, std::nullopt)), "44.1 kHz \u00B7 24-bit");
    EXPECT_EQ(detectedText(detection(44100, std::nullopt, 256)), "44.1 kHz \u00B7 256 kbps");
    EXPECT_EQ(detectedText(detection(48000, std::nullopt, std::nullopt)), "48 kHz");
    EXPECT_EQ(detectedText(detection(44100, 24, 256)), "44.1 kHz \u00B7 24-bit");

    EXPECT_EQ(deviceText(96000, 32), "96 kHz \u00B7 32-bit");
    EXPECT_EQ(deviceText(96000, 0), "96 kHz");
    EXPECT_EQ(deviceText(0, 24), "\u2014");
    EXPECT_EQ(deviceText(-1, 24), "\u2014");

    EXPECT_EQ(menuBarTitle(48000, detection(44100, 24, 256)), "48 kHz \u00B7 24-bit");
    EXPECT_EQ(menuBarTitle(48000, detection(44100, std::nullopt, 256)), "48 kHz \u00B7 256 kbps");
    EXPECT_EQ(menuBarTitle(48000, std::nullopt), "48 kHz");
    EXPECT_EQ(menuBarTitle(0, detection(44100, 24, std::nullopt)), "\u2013");
}

TEST(DuplicateDetection, ComparesOnlyRateDepthAndBitRateAbsentEqualingAbsent) {
    const RateDetection a = detection(44100, 24, std::nullopt);
    RateDetection otherOrigin = a;
    otherOrigin.rawMessage = "other";
    otherOrigin.source = "AudioQueue";
    otherOrigin.date += 1s;
    EXPECT_TRUE(hasSameFormat(a, otherOrigin));
    EXPECT_TRUE(hasSameFormat(detection(48000, std::nullopt, std::nullopt),
                              detection(48000, std::nullopt, std::nullopt)));
    EXPECT_FALSE(hasSameFormat(a, detection(44100, std::nullopt, std::nullopt)));
    EXPECT_FALSE(hasSameFormat(a, detection(44100, 24, 256)));
    EXPECT_FALSE(hasSameFormat(a, detection(44100, 16, std::nullopt)));
    EXPECT_FALSE(
        hasSameFormat(detection(44100, std::nullopt, 256), detection(44100, std::nullopt, 320)));
    // Exact rate equality: the app's fractional rates are not rounded.
    EXPECT_FALSE(hasSameFormat(a, detection(44100.5, 24, std::nullopt)));
}

}  // namespace
}  // namespace corvanel
