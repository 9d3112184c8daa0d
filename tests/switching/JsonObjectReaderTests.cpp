// The NDJSON object reader: strings with every escape, numbers, skipped containers, and bad
// input reported with a reason instead of a crash.
#include <gtest/gtest.h>

#include "platform/sim/JsonObjectReader.h"

namespace corvanel {
namespace {

JsonObject read(std::string_view line) {
    auto result = readJsonObject(line);
    if (const auto* error = std::get_if<JsonError>(&result))
        ADD_FAILURE() << "unexpected error: " << error->reason << " at " << error->offset;
    return std::get_if<JsonObject>(&result) ? std::get<JsonObject>(result) : JsonObject{};
}

std::string errorOf(std::string_view line) {
    auto result = readJsonObject(line);
    const auto* error = std::get_if<JsonError>(&result);
    return error ? error->reason : "no error";
}

TEST(JsonObjectReader, KeepsTopLevelScalarsAndSkipsContainers) {
    const JsonObject object =
        read(R"( {"a":"text","n":-12.5e2,"t":true,"f":false,"z":null,)"
             R"("nested":{"deep":[1,{"x":"y"},[]],"e":{}},"list":[ "s" , 2 ],"last":"ok"} )");
    EXPECT_EQ(*object.text("a"), "text");
    EXPECT_EQ(std::get<double>(object.scalars.at("n")), -1250);
    EXPECT_EQ(std::get<bool>(object.scalars.at("t")), true);
    EXPECT_EQ(std::get<bool>(object.scalars.at("f")), false);
    EXPECT_TRUE(std::holds_alternative<std::nullptr_t>(object.scalars.at("z")));
    EXPECT_FALSE(object.scalars.contains("nested"));
    EXPECT_FALSE(object.scalars.contains("deep"));
    EXPECT_FALSE(object.scalars.contains("x"));
    EXPECT_EQ(*object.text("last"), "ok");
    EXPECT_EQ(object.text("n"), nullptr);
    EXPECT_EQ(object.text("missing"), nullptr);
    EXPECT_TRUE(read("{}").scalars.empty());
}

TEST(JsonObjectReader, DecodesEscapesIncludingSurrogatePairs) {
    const JsonObject object =
        read(R"({"s":"q\" b\\ s\/ \b\f\n\r\t \u00e9 \u2192 \ud83c\udfb5 \u0000!"})");
    EXPECT_EQ(*object.text("s"), std::string("q\" b\\ s/ \b\f\n\r\t \u00E9 \u2192 \U0001F3B5 ") +
                                     std::string(1, '\0') + "!");
    EXPECT_EQ(*read(R"({"k\u0041y":"v"})").text("kAy"), "v");
    EXPECT_EQ(*read("{\"raw\":\"\xC3\xA9\"}").text("raw"), "\u00E9");
}

TEST(JsonObjectReader, ALaterRepeatedNameWins) {
    EXPECT_EQ(*read(R"({"k":"first","k":"second"})").text("k"), "second");
}

TEST(JsonObjectReader, ReportsMalformedInput) {
    EXPECT_EQ(errorOf(R"({"a":"b")"), "unterminated object");
    EXPECT_EQ(errorOf(R"({"a":"b)"), "unterminated string");
    EXPECT_EQ(errorOf(R"({"a":"\x"})"), "unknown escape");
    EXPECT_EQ(errorOf(R"({"a":"\u12"})"), "bad hex digit in \\u escape");
    EXPECT_EQ(errorOf(R"({"a":"\u12)"), "short \\u escape");
    EXPECT_EQ(errorOf(R"({"a":"\ud83c"})"), "high surrogate without its pair");
    EXPECT_EQ(errorOf(R"({"a":"\ud83c\u0041"})"), "high surrogate without its pair");
    EXPECT_EQ(errorOf(R"({"a":"\udfb5"})"), "lone low surrogate");
    EXPECT_EQ(errorOf("{\"a\":\"line\nbreak\"}"), "control character in string");
    EXPECT_EQ(errorOf(R"({"a":01})"), "expected '}'");
    EXPECT_EQ(errorOf(R"({"a":1.})"), "expected digits after the decimal point");
    EXPECT_EQ(errorOf(R"({"a":1e})"), "expected exponent digits");
    EXPECT_EQ(errorOf(R"({"a":1e999})"), "number out of range");
    EXPECT_EQ(errorOf(R"({"a":+1})"), "expected a value");
    EXPECT_EQ(errorOf(R"({"a":tru})"), "unknown literal");
    EXPECT_EQ(errorOf(R"({"a" "b"})"), "expected ':'");
    EXPECT_EQ(errorOf(R"({a:1})"), "expected a member name");
    EXPECT_EQ(errorOf(R"({"a":[1,2})"), "expected ']'");
    EXPECT_EQ(errorOf(R"({"a":1,})"), "expected a member name");
    EXPECT_EQ(errorOf(R"({"a":1} {"b":2})"), "unexpected text after the object");
    EXPECT_EQ(errorOf(R"(["not","an","object"])"), "expected '{'");
    EXPECT_EQ(errorOf(""), "expected '{'");
}

TEST(JsonObjectReader, DeepNestingIsRefusedNotRecursedInto) {
    const std::string deep = "{\"a\":" + std::string(100000, '[') + std::string(100000, ']') + "}";
    EXPECT_EQ(errorOf(deep), "nested too deeply");
    const std::string fine = "{\"a\":" + std::string(150, '[') + std::string(150, ']') + "}";
    EXPECT_EQ(errorOf(fine), "no error");
}

}  // namespace
}  // namespace corvanel
