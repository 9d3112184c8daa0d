// Numbers from log messages, script replies and exported logs: exact, strict, and read the same
// whatever the user's locale says about decimal separators.
#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include "switching/NumberText.h"

namespace corvanel {
namespace {

TEST(DecimalText, ConvertsExactlyAsTheNearestDouble) {
    EXPECT_EQ(parseDecimal("44.1"), 44.1);
    EXPECT_EQ(parseDecimal("0.1"), 0.1);
    EXPECT_EQ(parseDecimal("88200.0"), 88200.0);
    EXPECT_EQ(parseDecimal("+96"), 96.0);
    EXPECT_EQ(parseDecimal("-0.5"), -0.5);
    EXPECT_EQ(parseDecimal(".5"), 0.5);
    EXPECT_EQ(parseDecimal("5."), 5.0);
    EXPECT_EQ(parseDecimal("1.92e5"), 192000.0);
    EXPECT_EQ(parseDecimal("1E-3"), 0.001);
    // Correct rounding, where a naive digit-by-digit sum drifts by an ulp.
    EXPECT_EQ(parseDecimal("2.2250738585072014e-308"), 2.2250738585072014e-308);
    EXPECT_EQ(parseDecimal("9007199254740993"), 9007199254740992.0);
}

TEST(DecimalText, RefusesAnythingButAPlainDecimalNumber) {
    for (const char* text :
         {"",    "+",        "-",     ".",      "e5",      "1e",   "1e+", "1.2.3",
          "--1", "+-1",      " 1",    "1 ",     "1,5",     "0x10", "inf", "-inf",
          "nan", "infinity", "1e400", "-1e400", "44.1kHz", "٤٤"})
        EXPECT_FALSE(parseDecimal(text)) << '"' << text << '"';
}

TEST(DecimalText, IgnoresTheUsersDecimalComma) {
    const std::string previous = std::setlocale(LC_ALL, nullptr);
    ASSERT_TRUE(std::setlocale(LC_ALL, "de_DE.UTF-8")) << "scripts/bootstrap makes this locale";
    const auto point = parseDecimal("44.1");
    const auto comma = parseDecimal("44,1");
    std::setlocale(LC_ALL, previous.c_str());
    EXPECT_EQ(point, 44.1);
    EXPECT_FALSE(comma);
}

TEST(PlainIntegerText, TakesTheWholeSixtyFourBitRangeAndNoMore) {
    EXPECT_EQ(parsePlainInteger("24"), 24);
    EXPECT_EQ(parsePlainInteger("+24"), 24);
    EXPECT_EQ(parsePlainInteger("-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(parsePlainInteger("9223372036854775807"), INT64_MAX);
    EXPECT_FALSE(parsePlainInteger("9223372036854775808"));
    EXPECT_FALSE(parsePlainInteger("-9223372036854775809"));
    EXPECT_FALSE(parsePlainInteger("24.0"));
    EXPECT_FALSE(parsePlainInteger("-"));
}

}  // namespace
}  // namespace corvanel
