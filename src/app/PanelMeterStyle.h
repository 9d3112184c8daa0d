#pragma once
// The closed list of the floating panel's meter styles, in the order the panel's menu lists them,
// with the raw value each is stored under and its display title.
#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

namespace corvanel {

enum class PanelHeightGroup { compact, tall };

class PanelMeterStyle {
  public:
    enum Case {
        analyzer,
        vu,
        boombox,
        tapeDeck,
        futuristicRack,
        vintageConsole,
        pulsar,
        valhalla,
        inferno,
        ledRack,
        yamahaClassic,
    };
    static constexpr std::size_t caseCount = 11;

    constexpr PanelMeterStyle(Case value) : value_(value) {}  // NOLINT: reads like the case
    constexpr operator Case() const { return value_; }        // so that `switch` works

    // Exact, case-sensitive; any other string is no style.
    static std::optional<PanelMeterStyle> fromRawValue(std::string_view rawValue);
    static const std::array<PanelMeterStyle, caseCount>& allCases();

    std::string_view rawValue() const;
    std::string_view title() const;
    PanelHeightGroup heightGroup() const;

  private:
    Case value_;
};

}  // namespace corvanel

template <>
struct std::hash<corvanel::PanelMeterStyle> {
    std::size_t operator()(corvanel::PanelMeterStyle style) const noexcept {
        return static_cast<std::size_t>(static_cast<corvanel::PanelMeterStyle::Case>(style));
    }
};
