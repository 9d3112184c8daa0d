// Sized property reads, rate-range expansion and the deepest-format choice, including the
// failure paths through injected hardware failures.
#include <gtest/gtest.h>

#include "platform/sim/SimAudioHardware.h"
#include "platform/sim/VirtualTimeExecutor.h"
#include "switching/CoreAudioHelper.h"

namespace corvanel {
namespace {

using Operation = SimAudioHardware::Operation;

class CoreAudioHelperTest : public ::testing::Test {
  protected:
    AudioObjectID deviceWithRates(std::vector<AudioValueRange> rates) {
        SimAudioHardware::DeviceSpec setup;
        setup.name = "Device";
        setup.uid = "device-uid";
        setup.availableRates = std::move(rates);
        return audio->addDevice(setup);
    }

    AudioObjectID deviceWithStreams(std::vector<SimAudioHardware::StreamSpec> streams) {
        SimAudioHardware::DeviceSpec setup;
        setup.name = "Device";
        setup.availableRates = {{44100, 192000}};
        setup.outputStreams = std::move(streams);
        return audio->addDevice(setup);
    }

    static SimAudioHardware::StreamSpec stream(std::vector<AudioStreamRangedDescription> offered,
                                               std::uint32_t currentBits, double rate = 48000) {
        SimAudioHardware::StreamSpec setup;
        setup.availableFormats = std::move(offered);
        setup.physicalFormat = SimAudioHardware::linearPCM(rate, currentBits).mFormat;
        return setup;
    }

    std::vector<double> rates(AudioObjectID device) {
        return CoreAudioHelper::availableSampleRates(*audio, device);
    }

    void fail(Operation operation, AudioObjectID object, std::uint32_t selector) {
        audio->injectFailure(
            {operation, object, selector, kAudioHardwareIllegalOperationError, std::nullopt});
    }

    std::shared_ptr<VirtualTimeExecutor> executor = std::make_shared<VirtualTimeExecutor>();
    std::shared_ptr<SimAudioHardware> audio = std::make_shared<SimAudioHardware>(executor);
};

TEST_F(CoreAudioHelperTest, RangesExpandToStandardRatesAndDiscreteValuesStayAsTheyAre) {
    EXPECT_EQ(rates(deviceWithRates({{44100, 192000}})),
              (std::vector<double>{44100, 48000, 88200, 96000, 176400, 192000}));
    EXPECT_EQ(rates(deviceWithRates({{48000, 48000}, {44100, 44100}, {48000, 48000}})),
              (std::vector<double>{44100, 48000}));
    EXPECT_EQ(rates(deviceWithRates({{8000, 48000}})), (std::vector<double>{44100, 48000}));
    EXPECT_EQ(rates(deviceWithRates({{32000, 32000}, {88200, 96000}})),
              (std::vector<double>{32000, 88200, 96000}));
    EXPECT_EQ(rates(deviceWithRates({{96000, 44100}})), std::vector<double>{});
    EXPECT_EQ(rates(deviceWithRates({{1, 1e7}})).size(), 10u);
}

TEST_F(CoreAudioHelperTest, SizedReadsFailOnStatusOrSizeAndHoldOnlyWhatWasDelivered) {
    const AudioObjectID device = deviceWithRates({{44100, 44100}, {48000, 48000}});
    EXPECT_TRUE(rates(deviceWithRates({})).empty());  // size 0

    fail(Operation::getSize, device, kAudioDevicePropertyAvailableNominalSampleRates);
    EXPECT_TRUE(rates(device).empty());
    audio->clearFailures();
    fail(Operation::getData, device, kAudioDevicePropertyAvailableNominalSampleRates);
    EXPECT_TRUE(rates(device).empty());
    audio->clearFailures();
    EXPECT_EQ(rates(device), (std::vector<double>{44100, 48000}));

    // Too small for one whole element.
    audio->overrideReportedSize(device, kAudioDevicePropertyAvailableNominalSampleRates, 15);
    EXPECT_TRUE(rates(device).empty());
    // A ragged size is rounded down to whole elements, and the read is told that byte count.
    audio->overrideReportedSize(device, kAudioDevicePropertyAvailableNominalSampleRates, 17);
    EXPECT_EQ(rates(device), std::vector<double>{44100});
    // Three announced, two delivered: the list holds the two, with no rate 0 and no stream 0.
    audio->overrideReportedSize(device, kAudioDevicePropertyAvailableNominalSampleRates, 48);
    EXPECT_EQ(rates(device), (std::vector<double>{44100, 48000}));
    const AudioObjectID twoStreams = deviceWithStreams({stream({}, 16), stream({}, 16)});
    audio->overrideReportedSize(twoStreams, kAudioDevicePropertyStreams, 12);
    EXPECT_EQ(CoreAudioHelper::outputStreams(*audio, twoStreams), audio->streams(twoStreams));
}

TEST_F(CoreAudioHelperTest, NameUIDAndStreamsReportTheirFailureValues) {
    const AudioObjectID device = deviceWithStreams({stream({}, 16), stream({}, 16)});
    EXPECT_EQ(CoreAudioHelper::deviceName(*audio, device), "Device");
    EXPECT_EQ(CoreAudioHelper::outputStreams(*audio, device), audio->streams(device));
    EXPECT_EQ(CoreAudioHelper::deviceUID(*audio, 9999), std::nullopt);
    EXPECT_EQ(CoreAudioHelper::deviceName(*audio, 9999), "Unknown device");
    fail(Operation::getSize, device, kAudioDevicePropertyStreams);
    EXPECT_TRUE(CoreAudioHelper::outputStreams(*audio, device).empty());
    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(*audio, device, 48000), std::nullopt);

    EXPECT_EQ(CoreAudioHelper::deviceUID(*audio, deviceWithRates({})), "device-uid");
}

TEST_F(CoreAudioHelperTest, DefaultDeviceAndNominalRateTreatFailuresAsNothing) {
    EXPECT_EQ(CoreAudioHelper::defaultOutputDevice(*audio), std::nullopt);  // id 0
    const AudioObjectID device = deviceWithRates({{44100, 44100}});
    audio->setDefaultOutputDevice(device);
    EXPECT_EQ(CoreAudioHelper::defaultOutputDevice(*audio), device);
    EXPECT_EQ(CoreAudioHelper::nominalRate(*audio, device), 48000);
    fail(Operation::getData, kAudioObjectSystemObject, kAudioHardwarePropertyDefaultOutputDevice);
    fail(Operation::getData, device, kAudioDevicePropertyNominalSampleRate);
    EXPECT_EQ(CoreAudioHelper::defaultOutputDevice(*audio), std::nullopt);
    EXPECT_EQ(CoreAudioHelper::nominalRate(*audio, device), 0);
}

TEST_F(CoreAudioHelperTest, AStreamAlreadyAtTheDeepestFormatIsLeftAlone) {
    const AudioObjectID device = deviceWithStreams({stream(
        {SimAudioHardware::linearPCM(48000, 16), SimAudioHardware::linearPCM(48000, 24)}, 24)});
    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(*audio, device, 48000), 24u);
    EXPECT_TRUE(audio->writes().empty());
}

TEST_F(CoreAudioHelperTest, TheDeepestLinearFormatThatFitsTheRateIsWrittenAtThatRate) {
    const AudioObjectID device = deviceWithStreams(
        {stream({SimAudioHardware::linearPCM(96000, 16), SimAudioHardware::linearPCM(96000, 24),
                 SimAudioHardware::linearPCM(48000, 32)},
                16)});
    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(*audio, device, 96000), 24u);
    ASSERT_EQ(audio->writes().size(), 1u);
    const AudioStreamBasicDescription written = audio->writes()[0].format();
    EXPECT_EQ(written.mBitsPerChannel, 24u);
    EXPECT_EQ(written.mSampleRate, 96000);
    EXPECT_EQ(audio->writes()[0].address.mSelector, kAudioStreamPropertyPhysicalFormat);
}

TEST_F(CoreAudioHelperTest, AmongEquallyDeepFormatsTheFirstOfferedIsWritten) {
    // 24 bits packed in 3 bytes, and 24 bits in 4-byte containers.
    const AudioStreamRangedDescription packed = SimAudioHardware::linearPCM(96000, 24);
    AudioStreamRangedDescription unpacked = packed;
    unpacked.mFormat.mFormatFlags = 0;
    unpacked.mFormat.mBytesPerFrame = unpacked.mFormat.mBytesPerPacket = 8;
    const AudioObjectID packedFirst = deviceWithStreams({stream({packed, unpacked}, 16, 96000)});
    const AudioObjectID unpackedFirst = deviceWithStreams({stream({unpacked, packed}, 16, 96000)});

    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(*audio, packedFirst, 96000), 24u);
    EXPECT_EQ(audio->writes().back().format().mBytesPerFrame, 6u);
    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(*audio, unpackedFirst, 96000), 24u);
    EXPECT_EQ(audio->writes().back().format().mBytesPerFrame, 8u);
}

TEST_F(CoreAudioHelperTest, RangedEntriesFitByTheirRangeAndOtherFormatsNeverCount) {
    AudioStreamRangedDescription ranged = SimAudioHardware::linearPCM(44100, 24, 44100, 192000);
    AudioStreamRangedDescription compressed = SimAudioHardware::linearPCM(88200, 32);
    compressed.mFormat.mFormatID = fourCC("ac-3");
    AudioStreamRangedDescription inverted = SimAudioHardware::linearPCM(44100, 32, 192000, 8000);
    const AudioObjectID device = deviceWithStreams({stream({compressed, inverted, ranged}, 16)});
    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(*audio, device, 88200), 24u);
    EXPECT_EQ(audio->writes().back().format().mSampleRate, 88200);
}

TEST_F(CoreAudioHelperTest, FailingStreamsAreSkippedAndTheBestResultIsKept) {
    const auto offers =
        std::vector{SimAudioHardware::linearPCM(48000, 16), SimAudioHardware::linearPCM(48000, 24)};
    const AudioObjectID device =
        deviceWithStreams({stream(offers, 16), stream(offers, 16), stream(offers, 16)});
    const std::vector<AudioObjectID> streams = audio->streams(device);

    // First stream: its offers cannot be read. Second: the write fails but the current format
    // read says 16. Third: current format unreadable and the write fails: nothing.
    fail(Operation::getSize, streams[0], kAudioStreamPropertyAvailablePhysicalFormats);
    fail(Operation::setData, streams[1], kAudioStreamPropertyPhysicalFormat);
    fail(Operation::getData, streams[2], kAudioStreamPropertyPhysicalFormat);
    fail(Operation::setData, streams[2], kAudioStreamPropertyPhysicalFormat);
    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(*audio, device, 48000), 16u);

    audio->clearFailures();
    fail(Operation::getData, streams[0], kAudioStreamPropertyPhysicalFormat);
    fail(Operation::setData, streams[0], kAudioStreamPropertyPhysicalFormat);
    fail(Operation::setData, streams[1], kAudioStreamPropertyPhysicalFormat);
    fail(Operation::setData, streams[2], kAudioStreamPropertyPhysicalFormat);
    fail(Operation::getData, streams[1], kAudioStreamPropertyPhysicalFormat);
    fail(Operation::getData, streams[2], kAudioStreamPropertyPhysicalFormat);
    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(*audio, device, 48000), std::nullopt);

    audio->clearFailures();
    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(*audio, device, 48000), 24u);
    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(*audio, device, 44100), std::nullopt);
}

}  // namespace
}  // namespace corvanel
