// The style catalogue, the style-to-renderer dispatch and the live meter widget.
#include <gtest/gtest.h>

#include <QImage>
#include <QTest>
#include <cmath>
#include <numbers>
#include <unordered_set>

#include "GuiApplication.h"
#include "app/MeterContent.h"
#include "app/MeterSnapshot.h"
#include "app/PanelMeterStyle.h"

namespace corvanel {
namespace {

using testing::guiApplication;

TEST(PanelMeterStyle, ElevenStylesInMenuOrderWithTheirStoredNamesAndTitles) {
    const auto& all = PanelMeterStyle::allCases();
    ASSERT_EQ(all.size(), 11u);
    EXPECT_EQ(all.front().rawValue(), "bars");
    EXPECT_EQ(all.front().title(), "Spectrum analyzer");
    EXPECT_EQ(all.back().rawValue(), "yamahaclassic");
    EXPECT_EQ(all.back().title(), "Yamaha Classic");
    EXPECT_EQ(PanelMeterStyle(PanelMeterStyle::vu).title(), "Studio VU");
    EXPECT_EQ(PanelMeterStyle(PanelMeterStyle::tapeDeck).rawValue(), "tapedeck");
    EXPECT_EQ(PanelMeterStyle(PanelMeterStyle::ledRack).title(), "LED Rack");
    std::unordered_set<PanelMeterStyle> distinct;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const PanelMeterStyle style = all[i];
        distinct.insert(style);
        EXPECT_EQ(PanelMeterStyle::fromRawValue(style.rawValue()), style);
        EXPECT_EQ(style.heightGroup(), i < 4 ? PanelHeightGroup::compact : PanelHeightGroup::tall)
            << style.rawValue();
    }
    EXPECT_EQ(distinct.size(), 11u);
}

TEST(PanelMeterStyle, RawValuesMatchExactlyAndCaseSensitively) {
    for (const char* unknown : {"", "VU", "Bars", "analyzer", "vu ", "tapeDeck"})
        EXPECT_FALSE(PanelMeterStyle::fromRawValue(unknown).has_value()) << unknown;
}

meters::MeterValues channelValues(float left, float right) {
    std::vector<float> levels(40, 0.4f);
    return {levels, levels, left, right};
}

QImage snapshot(std::string_view style, const meters::MeterValues& values,
                QSizeF size = {300, 200}) {
    guiApplication();
    return renderMeterSnapshot(style, values, size, 1.0);
}

TEST(MeterRendererDispatch, UnknownOrMiscasedStylesShowTheSpectrumAnalyzer) {
    const meters::MeterValues values = channelValues(0.5f, 0.5f);
    const QImage analyzer = snapshot("bars", values);
    for (const char* unknown : {"", "VU", "nonsense"})
        EXPECT_EQ(snapshot(unknown, values), analyzer);
    EXPECT_NE(snapshot("vu", values), analyzer);
    EXPECT_NE(snapshot("boombox", values), analyzer);
}

TEST(MeterRendererDispatch, StudioVUShowsTheLeftChannelLeftAndTheRightChannelRight) {
    // Two 143-point meters 14 apart; each dial's pivot is at (71.5, 187) of its meter and its
    // scale radius is 0.47 x 125.
    const QImage image = snapshot("vu", channelValues(1.0f, 0.0f));
    const double radius = 0.47 * 125;
    const auto needleAt = [&](double meterX, double degrees) {
        const double a = degrees * std::numbers::pi / 180;
        const QColor c =
            image.pixelColor(static_cast<int>(meterX + 71.5 + 0.6 * radius * std::cos(a)),
                             static_cast<int>(187 + 0.6 * radius * std::sin(a)));
        return (c.red() + c.green() + c.blue()) / 3 < 110;
    };
    EXPECT_TRUE(needleAt(0, -45));  // left meter, full scale
    EXPECT_FALSE(needleAt(0, -135));
    EXPECT_TRUE(needleAt(157, -135));  // right meter, silent
    EXPECT_FALSE(needleAt(157, -45));
}

TEST(MeterContent, FrameClockRunsWhileVisibleAndSomethingMovesThenStops) {
    guiApplication();
    MeterContent content(std::shared_ptr<SpectrumAnalyzer>(), QStringLiteral("vu"));
    content.resize(300, 200);
    content.showValues(channelValues(0.8f, 0.8f));
    EXPECT_FALSE(content.isAnimating());  // not shown: nothing to animate
    content.show();
    content.showValues(channelValues(0.1f, 0.9f));
    EXPECT_TRUE(content.isAnimating());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !content.isAnimating(); }, 3000));
    content.hide();
    content.showValues(channelValues(0.5f, 0.5f));
    EXPECT_FALSE(content.isAnimating());
}

TEST(MeterContent, ChangingStyleRedrawsInTheNewStyleWithTheSameValues) {
    guiApplication();
    const meters::MeterValues values = channelValues(0.7f, 0.3f);
    MeterContent content(std::shared_ptr<SpectrumAnalyzer>(), QStringLiteral("bars"));
    content.resize(300, 200);
    content.showValues(values);
    content.setStyle(QStringLiteral("tapedeck"));
    EXPECT_EQ(content.style(), QStringLiteral("tapedeck"));
    // At rest after a style change, the widget shows exactly the still frame of that style
    // (probed on the opaque meter faces; the widget's own background shows elsewhere).
    const QImage shown =
        content.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage expected = snapshot("tapedeck", values);
    EXPECT_EQ(shown.pixelColor(70, 60), expected.pixelColor(70, 60));
    EXPECT_EQ(shown.pixelColor(220, 100), expected.pixelColor(220, 100));
    EXPECT_NE(shown.pixelColor(60, 100), snapshot("bars", values).pixelColor(60, 100));
}

}  // namespace
}  // namespace corvanel
