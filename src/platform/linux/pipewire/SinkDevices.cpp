#include "platform/linux/pipewire/SinkDevices.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace corvanel::pipewire {
namespace {

// How one of PipeWire's sample formats lays out a sample.
struct SampleLayout {
    std::uint32_t bits = 0;
    std::uint32_t bytes = 0;
    bool isFloat = false;
    bool planar = false;
};

// Signed integer and float linear PCM ("S16LE", "S24_32P", "F32BE", ...); unsigned, companded
// and unknown formats are none of the depths a device is set to.
std::optional<SampleLayout> sampleLayout(std::string_view name) {
    struct Prefix {
        std::string_view text;
        SampleLayout layout;
    };
    // Longer prefixes first: "S24_32" before "S24".
    static constexpr Prefix prefixes[] = {
        {"S24_32", {24, 4, false, false}}, {"S8", {8, 1, false, false}},
        {"S16", {16, 2, false, false}},    {"S24", {24, 3, false, false}},
        {"S32", {32, 4, false, false}},    {"F32", {32, 4, true, false}},
        {"F64", {64, 8, true, false}},
    };
    for (const Prefix& prefix : prefixes) {
        if (!name.starts_with(prefix.text)) continue;
        const std::string_view order = name.substr(prefix.text.size());
        if (!order.empty() && order != "LE" && order != "BE" && order != "P") return std::nullopt;
        SampleLayout layout = prefix.layout;
        layout.planar = order == "P";
        return layout;
    }
    return std::nullopt;
}

AudioStreamBasicDescription linearPCM(const SampleLayout& layout, double rate,
                                      std::uint32_t channels) {
    AudioStreamBasicDescription format;
    format.mSampleRate = rate;
    format.mFormatID = kAudioFormatLinearPCM;
    format.mFormatFlags = (layout.isFloat ? kAudioFormatFlagIsFloat : 0u) |
                          (layout.bits == layout.bytes * 8 ? kAudioFormatFlagIsPacked : 0u) |
                          (layout.planar ? kAudioFormatFlagIsNonInterleaved : 0u);
    format.mChannelsPerFrame = channels;
    format.mBitsPerChannel = layout.bits;
    format.mBytesPerFrame = layout.planar ? layout.bytes : layout.bytes * channels;
    format.mFramesPerPacket = 1;
    format.mBytesPerPacket = format.mBytesPerFrame;
    return format;
}

std::vector<AudioValueRange> offeredRates(const OfferedFormat& offer) {
    std::vector<AudioValueRange> ranges;
    if (offer.minRate && offer.maxRate)
        ranges.push_back(
            {static_cast<double>(*offer.minRate), static_cast<double>(*offer.maxRate)});
    for (const std::uint32_t rate : offer.rates)
        ranges.push_back({static_cast<double>(rate), static_cast<double>(rate)});
    return ranges;
}

bool sameEntry(const AudioStreamRangedDescription& first,
               const AudioStreamRangedDescription& second) {
    return first.mFormat.mBitsPerChannel == second.mFormat.mBitsPerChannel &&
           (first.mFormat.mFormatFlags & kAudioFormatFlagIsFloat) ==
               (second.mFormat.mFormatFlags & kAudioFormatFlagIsFloat) &&
           first.mFormat.mSampleRate == second.mFormat.mSampleRate &&
           first.mSampleRateRange.mMinimum == second.mSampleRateRange.mMinimum &&
           first.mSampleRateRange.mMaximum == second.mSampleRateRange.mMaximum;
}

// One entry per depth (integer or float) and rate range, in the sink's order; the layouts in
// memory (planar, byte order) of one depth are one choice for the device's depth.
std::vector<AudioStreamRangedDescription> offeredFormats(const SinkNode& sink) {
    std::vector<AudioStreamRangedDescription> entries;
    for (const OfferedFormat& offer : sink.offers) {
        for (const std::string& name : offer.sampleFormats) {
            auto layout = sampleLayout(name);
            if (!layout) continue;
            layout->planar = false;
            for (const AudioValueRange& range : offeredRates(offer)) {
                // A range offers any rate in it (rate 0); a single rate is that rate.
                const double rate = range.mMinimum == range.mMaximum ? range.mMinimum : 0;
                const AudioStreamRangedDescription entry{linearPCM(*layout, rate, offer.channels),
                                                         range};
                const bool known =
                    std::any_of(entries.begin(), entries.end(),
                                [&entry](const auto& other) { return sameEntry(entry, other); });
                if (!known) entries.push_back(entry);
            }
        }
    }
    return entries;
}

std::optional<AudioStreamBasicDescription> currentFormat(const SinkNode& sink, double rate) {
    const std::optional<NegotiatedFormat>& format = sink.format ? sink.format : sink.lastFormat;
    if (!format || rate <= 0) return std::nullopt;
    const auto layout = sampleLayout(format->sampleFormat);
    if (!layout) return std::nullopt;
    return linearPCM(*layout, rate, format->channels);
}

}  // namespace

AudioObjectID SinkObjectIDs::device(std::uint64_t serial) {
    const auto [entry, added] = devices_.try_emplace(serial, next_);
    if (added) next_ += 2;
    return entry->second;
}

void SinkObjectIDs::keepOnly(const GraphSnapshot& graph) {
    std::set<std::uint64_t> present;
    for (const SinkNode& sink : graph.sinks)
        present.insert(sink.serial);
    std::erase_if(devices_,
                  [&present](const auto& entry) { return !present.contains(entry.first); });
}

double nominalRate(const SinkNode& sink, const std::optional<ClockSettings>& clock) {
    if (sink.format && sink.format->rate > 0) return sink.format->rate;
    if (clock && clock->forcedRate > 0) return clock->forcedRate;
    if (sink.lastFormat && sink.lastFormat->rate > 0) return sink.lastFormat->rate;
    if (clock && clock->rate > 0) return clock->rate;
    return 0;
}

AudioObjectTable sinkDevices(const GraphSnapshot& graph, SinkObjectIDs& ids) {
    ids.keepOnly(graph);
    AudioObjectTable table;
    for (const SinkNode& sink : graph.sinks) {
        AudioObjectTable::DeviceSpec device;
        device.name = !sink.description.empty() ? sink.description
                      : !sink.nick.empty()      ? sink.nick
                                                : sink.name;
        device.uid = sink.name;
        device.nominalRate = nominalRate(sink, graph.clock);
        for (const OfferedFormat& offer : sink.offers) {
            const std::vector<AudioValueRange> ranges = offeredRates(offer);
            device.availableRates.insert(device.availableRates.end(), ranges.begin(), ranges.end());
        }
        device.outputStreams.push_back(
            {offeredFormats(sink), currentFormat(sink, device.nominalRate)});
        const AudioObjectID id = ids.device(sink.serial);
        table.addDevice(id, std::move(device), {SinkObjectIDs::stream(id)});
        if (graph.defaultSinkName == sink.name) table.defaultOutputDevice = id;
    }
    return table;
}

}  // namespace corvanel::pipewire
