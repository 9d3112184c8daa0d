#include "app/MeterRendererFactory.h"

#include "meters/styles/BoomboxView.h"
#include "meters/styles/ChannelPairView.h"
#include "meters/styles/FuturisticComboView.h"
#include "meters/styles/InfernoComboView.h"
#include "meters/styles/LEDRackComboView.h"
#include "meters/styles/LEDSpectrumView.h"
#include "meters/styles/PulsarComboView.h"
#include "meters/styles/TapeDeckMeterView.h"
#include "meters/styles/VUMeterView.h"
#include "meters/styles/ValhallaComboView.h"
#include "meters/styles/VintageComboView.h"
#include "meters/styles/YamahaClassicComboView.h"

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

template <typename View>
std::unique_ptr<MeterRenderer> single() {
    return std::make_unique<View>();
}

struct Entry {
    PanelMeterStyle::Case style;
    std::unique_ptr<MeterRenderer> (*make)();
};

// One row per style; a style without a row is drawn by the spectrum analyzer.
constexpr Entry renderers[] = {
    {PanelMeterStyle::analyzer, single<LEDSpectrumView>},
    {PanelMeterStyle::vu, channelPair<VUMeterView>},
    {PanelMeterStyle::boombox, single<BoomboxView>},
    {PanelMeterStyle::tapeDeck, channelPair<TapeDeckMeterView>},
    {PanelMeterStyle::futuristicRack, single<FuturisticComboView>},
    {PanelMeterStyle::vintageConsole, single<VintageComboView>},
    {PanelMeterStyle::pulsar, single<PulsarComboView>},
    {PanelMeterStyle::valhalla, single<ValhallaComboView>},
    {PanelMeterStyle::inferno, single<InfernoComboView>},
    {PanelMeterStyle::ledRack, single<LEDRackComboView>},
    {PanelMeterStyle::yamahaClassic, single<YamahaClassicComboView>},
};

}  // namespace

std::unique_ptr<MeterRenderer> makeMeterRenderer(PanelMeterStyle style) {
    for (const Entry& entry : renderers)
        if (entry.style == style) return entry.make();
    return single<LEDSpectrumView>();
}

std::unique_ptr<MeterRenderer> makeMeterRenderer(std::string_view rawValue) {
    return makeMeterRenderer(
        PanelMeterStyle::fromRawValue(rawValue).value_or(PanelMeterStyle::analyzer));
}

}  // namespace corvanel
