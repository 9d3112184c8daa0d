#pragma once
// The rate-switching subsystem's contact with the audio hardware: device name and UID, supported
// nominal rates, output streams, the deepest output format at a rate, and the default device
// and nominal rate reads the engine makes directly. Stateless: each call asks the hardware
// afresh; failures show only in the results.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/AudioHardware.h"

namespace corvanel::CoreAudioHelper {

// The platform's standard rates that a continuous range is expanded into, in this order.
inline constexpr double standardRates[] = {44100,  48000,  88200,  96000,  176400,
                                           192000, 352800, 384000, 705600, 768000};

// Supported nominal rates, ascending, without duplicates; empty on failure.
std::vector<double> availableSampleRates(AudioHardware& hardware, AudioObjectID device);
// The device's name; "Unknown device" on failure.
std::string deviceName(AudioHardware& hardware, AudioObjectID device);
// The device's unique identifier; absent on failure.
std::optional<std::string> deviceUID(AudioHardware& hardware, AudioObjectID device);
// The device's output stream ids in the device's order; empty on failure.
std::vector<AudioObjectID> outputStreams(AudioHardware& hardware, AudioObjectID device);
// Sets every output stream to its deepest linear-PCM format at `rate` (unless it is already as
// deep) and returns the deepest bits per channel reached; absent when nothing was determined.
std::optional<std::uint32_t> setMaxBitDepth(AudioHardware& hardware, AudioObjectID device,
                                            double rate);

// The default output device; absent when the read fails or reports no device (id 0).
std::optional<AudioObjectID> defaultOutputDevice(AudioHardware& hardware);
// The device's nominal rate; 0 when the read fails or the value is not positive.
double nominalRate(AudioHardware& hardware, AudioObjectID device);

}  // namespace corvanel::CoreAudioHelper
