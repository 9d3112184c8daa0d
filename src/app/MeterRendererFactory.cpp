#include "app/MeterRendererFactory.h"

#include "meters/BoomboxView.h"
#include "meters/ChannelPairView.h"
#include "meters/FuturisticComboView.h"
#include "meters/InfernoComboView.h"
#include "meters/LEDRackComboView.h"
#include "meters/LEDSpectrumView.h"
#include "meters/PulsarComboView.h"
#include "meters/TapeDeckMeterView.h"
#include "meters/VUMeterView.h"
#include "meters/ValhallaComboView.h"
#include "meters/VintageComboView.h"
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
