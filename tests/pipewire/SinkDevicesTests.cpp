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

TEST(SinkDevices, ASleepingSinkReportsTheRateItWillStartAt) {
    SinkObjectIDs ids;
    GraphSnapshot graph = graphWith({usbDac(40)});
    const auto rateOf = [&ids](const GraphSnapshot& snapshot) {
        return sinkDevices(snapshot, ids).devices.begin()->second.setup.nominalRate;
    };
    EXPECT_EQ(rateOf(graph), 48000);  // the graph's default clock rate
    graph.clock->forcedRate = 88200;
    EXPECT_EQ(rateOf(graph), 88200);  // the rate the graph is forced to
    graph.clock.reset();
    EXPECT_EQ(rateOf(graph), 0);  // nothing known

    const AudioObjectTable table = sinkDevices(graph, ids);
    const AudioObjectTable::Stream& stream = table.streams.begin()->second;
    EXPECT_FALSE(stream.setup.physicalFormat);
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
