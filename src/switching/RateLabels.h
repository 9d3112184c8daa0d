#pragma once
// The short labels shown in the menu bar, the menu and the panel, as pure functions of the
// values they describe.
#include <cstdint>
#include <optional>
#include <string>

#include "switching/RateDetection.h"

namespace corvanel {

// A rate in Hz as kHz without a unit: 44100 gives "44.1", 48000 gives "48".
std::string formatRate(double rate);

// "44.1 kHz · 24-bit", "44.1 kHz · 256 kbps", "48 kHz", or "—" without a detection.
std::string detectedText(const std::optional<RateDetection>& detection);

// "96 kHz · 32-bit", "96 kHz" with depth 0, or "—" when the rate is not positive.
std::string deviceText(double deviceRate, std::uint32_t deviceBitDepth);

// The device's rate with the detection's depth (or bit rate); "–" when the rate is not positive.
std::string menuBarTitle(double deviceRate, const std::optional<RateDetection>& detection);

}  // namespace corvanel
