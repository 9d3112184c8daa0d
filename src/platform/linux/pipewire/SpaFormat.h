#pragma once
// Reading a node's format parameters (SPA pods of type Format) into plain values.
#include <optional>

#include "platform/linux/pipewire/GraphSnapshot.h"

struct spa_pod;

namespace corvanel::pipewire {

// A `Format` param: the one format the node runs. Absent for anything but raw audio.
std::optional<NegotiatedFormat> negotiatedFormat(const spa_pod* param);
// One `EnumFormat` param: the sample formats and rates the node can run. Absent for anything but
// raw audio (DSD, compressed pass-through).
std::optional<OfferedFormat> offeredFormat(const spa_pod* param);

}  // namespace corvanel::pipewire
