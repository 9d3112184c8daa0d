#pragma once
// Meter values from sound, through the real ring and analyzer on virtual time: from an audio
// file at a moment, or from the built-in music-like signal for the gallery.
#include <string>
#include <variant>

#include "meters/kit/MeterValues.h"

namespace corvanel::tool {

// The values the analyzer publishes `seconds` into the file, or a message saying why the file
// cannot be played.
std::variant<meters::MeterValues, std::string> meterValuesFromFile(const std::string& path,
                                                                   double seconds);

// A lively moment of the synthesized music, the same every run.
meters::MeterValues galleryMeterValues();

}  // namespace corvanel::tool
