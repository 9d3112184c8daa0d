#pragma once
// The PipeWire graph seen as the platform's audio objects: every audio sink is an output device
// with one output stream, and the default sink is the default output device.
#include <cstdint>
#include <map>

#include "platform/AudioObjectTable.h"
#include "platform/linux/pipewire/GraphSnapshot.h"

namespace corvanel::pipewire {

// Object ids for sinks: one per sink for as long as it exists and never given to another, never
// 0 (no object) or 1 (the system object); a sink's stream has the id after its device's.
class SinkObjectIDs {
  public:
    static constexpr AudioObjectID firstDevice = 100;

    // The device id of the sink with this serial.
    AudioObjectID device(std::uint64_t serial);
    static AudioObjectID stream(AudioObjectID device) { return device + 1; }
    // Lets go of the ids of sinks that are gone (serials never come back).
    void keepOnly(const GraphSnapshot& graph);

  private:
    std::map<std::uint64_t, AudioObjectID> devices_;
    AudioObjectID next_ = firstDevice;
};

// The devices of a snapshot:
// - name: node.description (else node.nick, else node.name); UID: node.name;
// - nominal rate: see nominalRate();
// - available rates: the rates of its EnumFormat, a continuous range as one range;
// - one output stream offering every linear-PCM depth of the EnumFormat over those rates. Its
//   current format is the negotiated Format; while the sink is suspended, the format it ran
//   last at the nominal rate (PipeWire opens it again with it), and none before it has run.
AudioObjectTable sinkDevices(const GraphSnapshot& graph, SinkObjectIDs& ids);

// The rate a sink runs at: the rate of its negotiated Format. A suspended sink runs none; it
// will start at the rate the graph is forced to, if any. Otherwise the rate it ran last is the
// best answer, and keeps the device steady through the short suspensions of a rate change or a
// pause between tracks; a sink that has not run yet will start at the graph's default clock
// rate. 0 when nothing is known.
double nominalRate(const SinkNode& sink, const std::optional<ClockSettings>& clock);

}  // namespace corvanel::pipewire
