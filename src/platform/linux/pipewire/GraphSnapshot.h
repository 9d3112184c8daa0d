#pragma once
// One consistent picture of the PipeWire graph as far as Corvanel cares: the audio sinks with
// their formats, the playback streams, the default sink and the graph's clock settings. The
// mirror publishes a new one after every change; readers keep it as an immutable value.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvanel::pipewire {

// A node's negotiated `Format`: what it runs now.
struct NegotiatedFormat {
    std::string sampleFormat;  // PipeWire's short name: "S16LE", "S24_32LE", "F32P", ...
    std::uint32_t rate = 0;
    std::uint32_t channels = 0;
};

// One raw-audio entry of a node's `EnumFormat`: what it can run.
struct OfferedFormat {
    std::vector<std::string> sampleFormats;  // in the node's order, its preferred one first
    std::vector<std::uint32_t> rates;        // discrete rates, when it lists them
    // A continuous rate range, when it offers one instead of a list.
    std::optional<std::uint32_t> minRate;
    std::optional<std::uint32_t> maxRate;
    std::uint32_t channels = 0;  // its preferred channel count
};

struct SinkNode {
    std::uint64_t serial = 0;  // never reused while the daemon runs, unlike its global id
    std::string name;          // node.name: stable across restarts
    std::string description;   // node.description: what a user reads
    std::string nick;          // node.nick
    std::optional<NegotiatedFormat> format;  // absent while the sink is suspended
    // The format it ran last, kept while it is suspended; absent until it has run.
    std::optional<NegotiatedFormat> lastFormat;
    std::vector<OfferedFormat> offers;
};

struct PlaybackStream {
    std::uint64_t serial = 0;  // later streams have larger serials
    std::optional<std::int64_t> processID;
    std::optional<NegotiatedFormat> format;
};

// The "settings" metadata's clock entries.
struct ClockSettings {
    std::uint32_t rate = 0;  // the default rate of an idle graph
    std::vector<std::uint32_t> allowedRates;
    std::uint32_t forcedRate = 0;  // 0: not forced
};

struct GraphSnapshot {
    std::vector<SinkNode> sinks;  // in the order the daemon created them
    std::vector<PlaybackStream> streams;
    std::optional<std::string> defaultSinkName;  // the "default" metadata's default.audio.sink
    std::optional<ClockSettings> clock;          // absent without the "settings" metadata
};

}  // namespace corvanel::pipewire
