#include "app/MeterRendererFactory.h"

#include "meters/BoomboxView.h"
#include "meters/ChannelPairView.h"
#include "meters/LEDRackComboView.h"
#include "meters/LEDSpectrumView.h"
#include "meters/TapeDeckMeterView.h"
#include "meters/VUMeterView.h"
#include "meters/YamahaClassicComboView.h"

namespace corvanel {

namespace {

using namespace meters;

// The spacing between the two meters of a channel pair.
constexpr double pairSpacing = 14.0;

template <typename Meter>
std::unique_ptr<MeterRenderer> channelPair() {
    return std::make_unique<ChannelPairView>(std::make_unique<Meter>(QStringLiteral("L")),
                                             std::make_unique<Meter>(QStringLiteral("R")),
                                             pairSpacing);
}

}  // namespace

std::unique_ptr<MeterRenderer> makeMeterRenderer(PanelMeterStyle style) {
    switch (style) {
        case PanelMeterStyle::vu:
            return channelPair<VUMeterView>();
        case PanelMeterStyle::analyzer:
        default:
            break;
    }
    return std::make_unique<LEDSpectrumView>();
}

std::unique_ptr<MeterRenderer> makeMeterRenderer(std::string_view rawValue) {
    return makeMeterRenderer(
        PanelMeterStyle::fromRawValue(rawValue).value_or(PanelMeterStyle::analyzer));
}

}  // namespace corvanel
