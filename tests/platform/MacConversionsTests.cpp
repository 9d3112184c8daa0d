#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <vector>

#include "platform/mac/AggregateDeviceKeys.h"
#include "platform/mac/DescriptionTranslation.h"
#include "platform/mac/HandleTable.h"
#include "platform/mac/NativeConversions.h"
#include "platform/mac/ScreenRect.h"
#include "spectrum/AggregateDescription.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;

TEST(HandleTableTest, IdsAreUniqueAndNeverReusedAfterErase) {
    HandleTable<std::string> table;
    const auto first = table.insert("rate listener");
    const auto second = table.insert("device listener");
    EXPECT_NE(first, 0u);
    EXPECT_NE(first, second);
    ASSERT_NE(table.find(first), nullptr);
    EXPECT_EQ(*table.find(first), "rate listener");

    table.erase(first);
    EXPECT_EQ(table.find(first), nullptr);
    EXPECT_EQ(*table.find(second), "device listener");
    const auto third = table.insert("new rate listener");
    EXPECT_NE(third, first);
    EXPECT_NE(third, second);
    EXPECT_EQ(table.size(), 2u);
}

TEST(HandleTableTest, UnknownIdsFindNothingAndEraseHarmlessly) {
    HandleTable<int> table;
    EXPECT_EQ(table.find(0), nullptr);
    EXPECT_EQ(table.find(7), nullptr);
    table.erase(7);
    table.insert(1);
    table.insert(2);
    std::vector<int> visited;
    table.forEach([&](int handle) { visited.push_back(handle); });
    EXPECT_EQ(visited, (std::vector<int>{1, 2}));
}

TEST(NumberKindTest, SharedBooleanWinsOverItsCharEncoding) {
    EXPECT_EQ(numberKind("c", true), NumberKind::boolean);
    // A number made from a char is not the shared boolean: it is an integer.
    EXPECT_EQ(numberKind("c", false), NumberKind::integer);
}

TEST(NumberKindTest, FloatingEncodingsAreRealEverythingElseInteger) {
    EXPECT_EQ(numberKind("d", false), NumberKind::real);
    EXPECT_EQ(numberKind("f", false), NumberKind::real);
    for (const char* integral : {"q", "Q", "i", "I", "s", "l", "L"})
        EXPECT_EQ(numberKind(integral, false), NumberKind::integer) << integral;
    EXPECT_EQ(numberKind(nullptr, false), NumberKind::integer);
}

TEST(WallTimeConversionTest, KeepsFractionsAndDatesBefore1970) {
    EXPECT_EQ(wallTimeFromUnixSeconds(0), WallTime{});
    EXPECT_EQ(wallTimeFromUnixSeconds(1.5) - WallTime{}, 1500ms);
    EXPECT_EQ(wallTimeFromUnixSeconds(-2.25) - WallTime{}, -2250ms);
    const auto logDate = wallTimeFromUnixSeconds(1700000000.000250);
    EXPECT_EQ(std::chrono::duration_cast<std::chrono::microseconds>(logDate - WallTime{}).count() %
                  1000000,
              250);
}

TEST(ScreenRectTest, MenuBarItemOnPrimaryScreenIsAtTheTop) {
    // A 24-point status item at the very top of a 1117-point-high primary screen.
    const ScreenRect appKit{1200, 1117 - 24, 38, 24};
    EXPECT_EQ(topLeftOrigin(appKit, 1117), (ScreenRect{1200, 0, 38, 24}));
}

TEST(ScreenRectTest, ScreensAboveThePrimaryGetNegativeY) {
    const ScreenRect onUpperScreen{100, 1117 + 1440 - 24, 38, 24};
    EXPECT_EQ(topLeftOrigin(onUpperScreen, 1117), (ScreenRect{100, -1440, 38, 24}));
}

struct FakePlatformBuffer {
    std::uint32_t mNumberChannels;
    std::uint32_t mDataByteSize;
    void* mData;
};

TEST(ViewBuffersTest, CopiesChannelsSizesAndPointers) {
    std::array<float, 8> left{}, right{};
    const std::array<FakePlatformBuffer, 2> list{{{1, 32, left.data()}, {1, 28, right.data()}}};
    std::array<AudioBufferView, 4> views{};
    ASSERT_EQ(viewBuffers(list.data(), 2, views), 2u);
    EXPECT_EQ(views[0].numberChannels, 1u);
    EXPECT_EQ(views[0].dataByteSize, 32u);
    EXPECT_EQ(views[0].data, left.data());
    EXPECT_EQ(views[1].dataByteSize, 28u);
    EXPECT_EQ(views[1].data, right.data());
}

TEST(ViewBuffersTest, EmptyListsAndListsBeyondCapacity) {
    std::array<FakePlatformBuffer, 3> list{{{2, 4096, nullptr}, {1, 4, nullptr}, {1, 8, nullptr}}};
    std::array<AudioBufferView, 2> views{};
    EXPECT_EQ(viewBuffers(list.data(), 0, views), 0u);
    EXPECT_EQ(viewBuffers(list.data(), 3, views), 2u);
    EXPECT_EQ(views[0].numberChannels, 2u);
    EXPECT_EQ(views[1].dataByteSize, 4u);
}

template <std::size_t size>
bool known(const std::array<std::string_view, size>& keys, const std::string& key) {
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

const DescriptionDictionary& onlyDictionaryIn(const DescriptionDictionary& description,
                                              const std::string& listKey) {
    const DescriptionValue* list = findEntry(description, listKey);
    EXPECT_NE(list, nullptr) << listKey;
    const auto& entries = std::get<DescriptionList>(list->value);
    EXPECT_EQ(entries.size(), 1u);
    return std::get<DescriptionDictionary>(entries.front().value);
}

// The capture's description must use only keys the platform publishes, or the aggregate device
// is built without them and silently carries no tap.
TEST(AggregateDeviceKeysTest, SpectrumDescriptionUsesExactlyThePublishedKeys) {
    const DescriptionDictionary description =
        spectrumAggregateDescription("BuiltInSpeakerDevice", "TAP-UID");
    ASSERT_EQ(description.size(), aggregateKeys::device.size());
    for (const auto& [key, value] : description)
        EXPECT_TRUE(known(aggregateKeys::device, key)) << key;
    for (const auto& [key, value] : onlyDictionaryIn(description, "subdevices"))
        EXPECT_TRUE(known(aggregateKeys::subDevice, key)) << key;
    const DescriptionDictionary& tap = onlyDictionaryIn(description, "taps");
    ASSERT_EQ(tap.size(), aggregateKeys::subTap.size());
    for (const auto& [key, value] : tap)
        EXPECT_TRUE(known(aggregateKeys::subTap, key)) << key;
}

// Renders each kind distinctly, so a boolean turned into an integer (or a reordered entry)
// shows in the text.
struct TextBuilder {
    using Object = std::string;
    Object boolean(bool value) { return value ? "yes" : "no"; }
    Object integer(std::int64_t value) {
        // Appended, not `"#" + std::to_string(value)`: GCC 12 at -O3 reports a false -Wrestrict
        // inside the string's insert at the front (GCC bug 105651).
        Object out = "#";
        return out += std::to_string(value);
    }
    Object text(const std::string& value) { return "'" + value + "'"; }
    Object list(std::vector<Object> items) {
        std::string out = "[";
        for (const auto& item : items)
            out += item + ";";
        return out + "]";
    }
    Object dictionary(std::vector<std::pair<std::string, Object>> entries) {
        std::string out = "{";
        for (const auto& [key, entry] : entries)
            out += key + "=" + entry + ";";
        return out + "}";
    }
};

TEST(DescriptionTranslationTest, KeepsKindsAndOrderAtEveryDepth) {
    const DescriptionDictionary tap = {{"uid", {std::string("TAP")}}, {"drift", {true}}};
    const DescriptionDictionary description = {
        {"private", {true}},
        {"stacked", {false}},
        {"latency", {std::int64_t{-9000000000}}},
        {"taps", {DescriptionList{{tap}}}},
        {"subdevices", {DescriptionList{}}},
        {"name", {std::string("Corvanel Spectrum")}},
    };
    TextBuilder builder;
    EXPECT_EQ(translateDescription(DescriptionValue{description}, builder),
              "{private=yes;stacked=no;latency=#-9000000000;taps=[{uid='TAP';drift=yes;};];"
              "subdevices=[];name='Corvanel Spectrum';}");
}

TEST(DescriptionTranslationTest, TranslatesTheCaptureDescriptionCompletely) {
    TextBuilder builder;
    const std::string text = translateDescription(
        DescriptionValue{spectrumAggregateDescription("Speakers", "TAP-UID")}, builder);
    EXPECT_NE(text.find("master='Speakers';"), std::string::npos) << text;
    EXPECT_NE(text.find("subdevices=[{uid='Speakers';};];"), std::string::npos) << text;
    EXPECT_NE(text.find("taps=[{uid='TAP-UID';drift=yes;};]"), std::string::npos) << text;
    EXPECT_NE(text.find("tapautostart=yes;"), std::string::npos) << text;
}

}  // namespace
}  // namespace corvanel
