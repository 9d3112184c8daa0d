#pragma once
// The dictionary keys of an aggregate-device description as the platform publishes them
// (kAudioAggregateDevice...Key, kAudioSubDevice...Key, kAudioSubTap...Key). The process-tap
// adapter checks each against the platform's own macro at compile time.
#include <array>
#include <string_view>

namespace corvanel::aggregateKeys {

constexpr std::string_view name = "name";
constexpr std::string_view uid = "uid";
constexpr std::string_view isPrivate = "private";
constexpr std::string_view isStacked = "stacked";
constexpr std::string_view tapAutoStart = "tapautostart";
constexpr std::string_view mainSubDevice = "master";
constexpr std::string_view subDeviceList = "subdevices";
constexpr std::string_view tapList = "taps";

constexpr std::string_view subDeviceUID = "uid";

constexpr std::string_view subTapUID = "uid";
constexpr std::string_view subTapDriftCompensation = "drift";

constexpr std::array device{name,         uid,           isPrivate,     isStacked,
                            tapAutoStart, mainSubDevice, subDeviceList, tapList};
constexpr std::array subDevice{subDeviceUID};
constexpr std::array subTap{subTapUID, subTapDriftCompensation};

}  // namespace corvanel::aggregateKeys
