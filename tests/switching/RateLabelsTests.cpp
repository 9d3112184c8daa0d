// The rate format and the three label rules, and the records' equality.
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
    EXPECT_NO_THROW(formatRate(std::numeric_limits<double>::infinity()));
    EXPECT_NO_THROW(formatRate(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_NO_THROW(formatRate(1e300));
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

TEST(RateDetectionEquality, EveryFieldCountsButTheDuplicateTestReadsOnlyTheFormat) {
    const RateDetection a = detection(44100, 24, std::nullopt);
    RateDetection otherMessage = a;
    otherMessage.rawMessage = "other";
    RateDetection otherDate = a;
    otherDate.date += 1s;
    RateDetection otherSource = a;
    otherSource.source = "AudioQueue";
    EXPECT_EQ(a, detection(44100, 24, std::nullopt));
    EXPECT_NE(a, otherMessage);
    EXPECT_NE(a, otherDate);
    EXPECT_NE(a, otherSource);
    EXPECT_TRUE(hasSameFormat(a, otherMessage));
    EXPECT_TRUE(hasSameFormat(a, otherSource));
    EXPECT_FALSE(hasSameFormat(a, detection(44100, std::nullopt, std::nullopt)));
    EXPECT_FALSE(hasSameFormat(a, detection(44100, 24, 256)));
    EXPECT_FALSE(hasSameFormat(a, detection(44100.5, 24, std::nullopt)));
}

}  // namespace
}  // namespace corvanel
