#include "app/PanelMeterStyle.h"

namespace corvanel {

namespace {

struct Row {
    std::string_view rawValue;
    std::string_view title;
    PanelHeightGroup group;
};

// Indexed by case, in declaration order. "bars" is the analyzer's stored name.
constexpr std::array<Row, PanelMeterStyle::caseCount> rows{{
    {"bars", "Spectrum analyzer", PanelHeightGroup::compact},
    {"vu", "Studio VU", PanelHeightGroup::compact},
    {"boombox", "Boombox", PanelHeightGroup::compact},
    {"tapedeck", "Tape Deck", PanelHeightGroup::compact},
    {"futuristicrack", "Futuristic Rack", PanelHeightGroup::tall},
    {"vintageconsole", "Vintage Console", PanelHeightGroup::tall},
    {"pulsar", "Pulsar", PanelHeightGroup::tall},
    {"valhalla", "Valhalla", PanelHeightGroup::tall},
    {"inferno", "Inferno", PanelHeightGroup::tall},
    {"ledrack", "LED Rack", PanelHeightGroup::tall},
    {"yamahaclassic", "Yamaha Classic", PanelHeightGroup::tall},
}};

const Row& rowOf(PanelMeterStyle style) {
    return rows[static_cast<std::size_t>(static_cast<PanelMeterStyle::Case>(style))];
}

}  // namespace

std::optional<PanelMeterStyle> PanelMeterStyle::fromRawValue(std::string_view rawValue) {
    for (const PanelMeterStyle style : allCases())
        if (rowOf(style).rawValue == rawValue) return style;
    return std::nullopt;
}

const std::array<PanelMeterStyle, PanelMeterStyle::caseCount>& PanelMeterStyle::allCases() {
    static constexpr std::array<PanelMeterStyle, caseCount> cases{
        analyzer, vu,       boombox, tapeDeck, futuristicRack, vintageConsole,
        pulsar,   valhalla, inferno, ledRack,  yamahaClassic,
    };
    return cases;
}

std::string_view PanelMeterStyle::rawValue() const {
    return rowOf(*this).rawValue;
}

std::string_view PanelMeterStyle::title() const {
    return rowOf(*this).title;
}

PanelHeightGroup PanelMeterStyle::heightGroup() const {
    return rowOf(*this).group;
}

}  // namespace corvanel
