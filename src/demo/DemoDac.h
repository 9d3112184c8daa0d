#pragma once
// Demo mode's output device: a USB DAC that offers 44.1 to 192 kHz, each rate with 16-, 24- and
// 32-bit integer output formats, starting at 48 kHz / 24-bit as the default output device.
#include <string>
#include <vector>

#include "platform/sim/SimAudioHardware.h"

namespace corvanel {

inline constexpr const char* demoDacName = "Corvanel Demo DAC";

std::vector<double> demoDacRates();
SimAudioHardware::DeviceSpec demoDacSpec();
// Adds the DAC to `hardware`, makes it the default output device and returns its id.
AudioObjectID installDemoDac(SimAudioHardware& hardware);

}  // namespace corvanel
