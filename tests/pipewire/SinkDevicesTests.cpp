// The graph seen as devices, for graphs the private session cannot show: a DAC that lists its
// rates, a sink asleep under a forced rate, sinks that come and go across snapshots.
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/linux/pipewire/SinkDevices.h"

namespace corvanel::pipewire {
namespace {

// A USB DAC as ALSA shows it: three rates, packed 24-bit, 32-bit and 16-bit integers.
SinkNode usbDac(std::uint64_t serial) {
    SinkNode sink;
    sink.serial = serial;
    sink.name = "alsa_output.usb-dac";
    sink.description = "USB DAC";
    OfferedFormat offer;
    offer.sampleFormats = {"S32LE", "S24LE", "S16LE", "U8"};
    offer.rates = {44100, 48000, 96000};
    offer.channels = 2;
    sink.offers = {offer};
    return sink;
}

GraphSnapshot graphWith(std::vector<SinkNode> sinks) {
    GraphSnapshot graph;
    graph.sinks = std::move(sinks);
    graph.defaultSinkName = graph.sinks.empty() ? "" : graph.sinks.front().name;
    graph.clock = ClockSettings{48000, {48000}, 0};
    return graph;
}

TEST(SinkDevices, AListedRateSetAndItsDepthsBecomeDiscreteRatesAndRangedFormats) {
    SinkObjectIDs ids;
    SinkNode dac = usbDac(40);
    dac.format = NegotiatedFormat{"S24LE", 96000, 2};
    const AudioObjectTable table = sinkDevices(graphWith({dac}), ids);

    ASSERT_EQ(table.devices.size(), 1u);
    const auto& [id, device] = *table.devices.begin();
    EXPECT_EQ(table.defaultOutputDevice, id);
    EXPECT_EQ(device.setup.name, "USB DAC");
    EXPECT_EQ(device.setup.uid, "alsa_output.usb-dac");
    EXPECT_EQ(device.setup.nominalRate, 96000);
    ASSERT_EQ(device.setup.availableRates.size(), 3u);
    EXPECT_EQ(device.setup.availableRates[2].mMinimum, 96000);
    EXPECT_EQ(device.setup.availableRates[2].mMaximum, 96000);

    const AudioObjectTable::Stream& stream = table.streams.at(device.streamIDs.at(0));
    // Three depths at three rates; unsigned 8-bit is no depth a device is set to.
    EXPECT_EQ(stream.setup.availableFormats.size(), 9u);
    for (const AudioStreamRangedDescription& entry : stream.setup.availableFormats) {
        EXPECT_EQ(entry.mFormat.mSampleRate, entry.mSampleRateRange.mMinimum);
        EXPECT_NE(entry.mFormat.mBitsPerChannel, 8u);
    }
    ASSERT_TRUE(stream.setup.physicalFormat);
    EXPECT_EQ(stream.setup.physicalFormat->mBitsPerChannel, 24u);
    EXPECT_EQ(stream.setup.physicalFormat->mBytesPerFrame, 6u);
    EXPECT_EQ(stream.setup.physicalFormat->mFormatFlags & kAudioFormatFlagIsFloat, 0u);
}

TEST(SinkDevices, ASleepingSinkReportsTheRateAndFormatItWillStartWith) {
    SinkObjectIDs ids;
    GraphSnapshot graph = graphWith({usbDac(40)});
    const auto stream = [&ids](const GraphSnapshot& snapshot) {
        const AudioObjectTable table = sinkDevices(snapshot, ids);
        return std::make_pair(table.devices.begin()->second.setup.nominalRate,
                              table.streams.begin()->second.setup.physicalFormat);
    };
    // Never run: it starts at the graph's default clock rate, in a format nobody knows yet.
    EXPECT_EQ(stream(graph).first, 48000);
    EXPECT_FALSE(stream(graph).second);

    // Asleep after running: the rate and format it ran.
    graph.sinks[0].lastFormat = NegotiatedFormat{"S24LE", 44100, 2};
    EXPECT_EQ(stream(graph).first, 44100);
    ASSERT_TRUE(stream(graph).second);
    EXPECT_EQ(stream(graph).second->mBitsPerChannel, 24u);
    EXPECT_EQ(stream(graph).second->mSampleRate, 44100);

    // The graph is forced to a rate: it starts at that one, in the format it ran.
    graph.clock->forcedRate = 88200;
    EXPECT_EQ(stream(graph).first, 88200);
    EXPECT_EQ(stream(graph).second->mSampleRate, 88200);
    EXPECT_EQ(stream(graph).second->mBitsPerChannel, 24u);

    graph.clock.reset();
    graph.sinks[0].lastFormat.reset();
    EXPECT_EQ(stream(graph).first, 0);  // nothing known
}

TEST(SinkDevices, IdsLastAsLongAsTheSinkAndAreNeverGivenToAnother) {
    SinkObjectIDs ids;
    SinkNode other = usbDac(41);
    other.name = "other";
    const AudioObjectTable before = sinkDevices(graphWith({usbDac(40), other}), ids);
    std::vector<AudioObjectID> allIDs;
    for (const auto& [id, device] : before.devices) {
        allIDs.push_back(id);
        allIDs.push_back(device.streamIDs.at(0));
    }
    std::sort(allIDs.begin(), allIDs.end());
    EXPECT_EQ(std::adjacent_find(allIDs.begin(), allIDs.end()), allIDs.end());
    EXPECT_GT(allIDs.front(), kAudioObjectSystemObject);

    // The DAC is unplugged and plugged in again (a new serial); the other sink stays.
    const AudioObjectTable after = sinkDevices(graphWith({other, usbDac(57)}), ids);
    const AudioObjectID otherBefore = std::next(before.devices.begin())->first;
    EXPECT_TRUE(after.devices.contains(otherBefore));
    for (const auto& [id, device] : after.devices) {
        if (device.setup.uid == "alsa_output.usb-dac") {
            EXPECT_FALSE(before.devices.contains(id));
        }
    }
}

}  // namespace
}  // namespace corvanel::pipewire
