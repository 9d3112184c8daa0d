// Building and removing the capture chain over the simulated tap host: what each failing step
// says and exactly what is then removed, the aggregate device's description, and how the
// callback turns the delivered buffers into ring writes.
#include "spectrum/TapPipeline.h"

#include <gtest/gtest.h>

#include <cmath>
#include <regex>

#include "SpectrumTestWorld.h"
#include "spectrum/CaptureCallback.h"

namespace corvanel {
namespace {

using testing::SpectrumTestWorld;
using Op = SimTapOperation;

const std::string permissionHint =
    "Check System Settings ▸ Privacy & Security ▸ Screen & System Audio Recording.";

class TapPipelineTest : public ::testing::Test {
  protected:
    std::vector<Op> destroyCalls() const {
        std::vector<Op> destroys;
        for (const SimTapCall& call : world.taps->calls()) {
            if (call.operation == Op::destroyProcessTap ||
                call.operation == Op::destroyAggregateDevice ||
                call.operation == Op::destroyIOProcID || call.operation == Op::deviceStop)
                destroys.push_back(call.operation);
        }
        return destroys;
    }

    SpectrumTestWorld world;
    std::shared_ptr<SampleRingBuffer> ring = std::make_shared<SampleRingBuffer>(
        [executor = world.executor] { return executor->monotonicNow(); });
    TapPipeline pipeline{world.taps, world.audio, ring};
};

TEST_F(TapPipelineTest, BuildsTapDeviceAndCallbackInOrderAndRemovesThemInReverse) {
    ASSERT_FALSE(pipeline.build().has_value());
    EXPECT_TRUE(pipeline.isRunning());
    EXPECT_NE(pipeline.tapID(), 0u);
    EXPECT_NE(pipeline.aggregateID(), 0u);
    EXPECT_EQ(pipeline.tapSampleRate(), 48000.0);

    std::vector<Op> order;
    for (const SimTapCall& call : world.taps->calls())
        order.push_back(call.operation);
    EXPECT_EQ(order, (std::vector<Op>{Op::createProcessTap, Op::readTapFormat, Op::readTapUID,
                                      Op::createAggregateDevice, Op::readInputStreamConfiguration,
                                      Op::createIOProcID, Op::deviceStart}));

    world.taps->clearCalls();
    pipeline.teardown();
    EXPECT_EQ(destroyCalls(), (std::vector<Op>{Op::deviceStop, Op::destroyIOProcID,
                                               Op::destroyAggregateDevice, Op::destroyProcessTap}));
    for (const SimTapCall& call : world.taps->calls())
        EXPECT_EQ(call.status, kNoErr);
    EXPECT_FALSE(pipeline.isRunning());
    EXPECT_EQ(world.taps->liveObjectCount(), 0u);

    // Again, and with nothing built: harmless and silent.
    world.taps->clearCalls();
    pipeline.teardown();
    EXPECT_TRUE(world.taps->calls().empty());
}

TEST_F(TapPipelineTest, DescribesAPrivateUnmutedStereoTapOfEveryProcess) {
    ASSERT_FALSE(pipeline.build().has_value());
    const auto tap = world.taps->lastTapDescription();
    ASSERT_TRUE(tap.has_value());
    EXPECT_EQ(tap->name, "Corvanel Spectrum Tap");
    EXPECT_TRUE(tap->stereoMixdown);
    EXPECT_TRUE(tap->excludedProcesses.empty());
    EXPECT_TRUE(tap->isPrivate);
    EXPECT_EQ(tap->muteBehavior, 0);
}

std::string textOf(const DescriptionValue* value) {
    const auto* text = value ? std::get_if<std::string>(&value->value) : nullptr;
    return text ? *text : "<absent>";
}

std::optional<bool> flagOf(const DescriptionValue* value) {
    const auto* flag = value ? std::get_if<bool>(&value->value) : nullptr;
    return flag ? std::optional<bool>(*flag) : std::nullopt;
}

const DescriptionDictionary& onlyDictionaryIn(const DescriptionValue* list) {
    const auto& entries = std::get<DescriptionList>(list->value);
    EXPECT_EQ(entries.size(), 1u);
    return std::get<DescriptionDictionary>(entries.at(0).value);
}

TEST_F(TapPipelineTest, AggregateDeviceCarriesTheTapOnTheDefaultOutput) {
    ASSERT_FALSE(pipeline.build().has_value());
    const auto description = world.taps->lastAggregateDescription();
    ASSERT_TRUE(description.has_value());
    EXPECT_EQ(description->size(), 8u);
    EXPECT_EQ(textOf(findEntry(*description, "name")), "Corvanel Spectrum");
    EXPECT_TRUE(std::regex_match(
        textOf(findEntry(*description, "uid")),
        std::regex("Corvanel-Spectrum-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-"
                   "[0-9A-F]{12}")));
    EXPECT_EQ(flagOf(findEntry(*description, "private")), true);
    EXPECT_EQ(flagOf(findEntry(*description, "stacked")), false);
    EXPECT_EQ(flagOf(findEntry(*description, "tapautostart")), true);
    EXPECT_EQ(textOf(findEntry(*description, "master")), "Speakers-UID");
    const auto& subdevice = onlyDictionaryIn(findEntry(*description, "subdevices"));
    EXPECT_EQ(textOf(findEntry(subdevice, "uid")), "Speakers-UID");
    const auto& tap = onlyDictionaryIn(findEntry(*description, "taps"));
    EXPECT_EQ(textOf(findEntry(tap, "uid")), "SimTap-" + std::to_string(pipeline.tapID()));
    EXPECT_EQ(flagOf(findEntry(tap, "drift")), true);
}

TEST_F(TapPipelineTest, EveryBuildGetsAFreshDeviceUID) {
    ASSERT_FALSE(pipeline.build().has_value());
    const std::string first = textOf(findEntry(*world.taps->lastAggregateDescription(), "uid"));
    pipeline.teardown();
    ASSERT_FALSE(pipeline.build().has_value());
    EXPECT_NE(textOf(findEntry(*world.taps->lastAggregateDescription(), "uid")), first);
}

struct StepFailure {
    Op operation;
    OSStatus status;
    std::string message;
    std::vector<Op> removed;  // what teardown then removes, in order
};

TEST_F(TapPipelineTest, EachFailingStepNamesItselfAndLeavesOnlyWhatItBuilt) {
    const std::vector<StepFailure> failures = {
        {Op::createProcessTap,
         -1,
         "Could not create the audio tap (error -1). " + permissionHint,
         {}},
        {Op::readTapFormat,
         2003332927,
         "Could not read the tap format (error 2003332927). " + permissionHint,
         {Op::destroyProcessTap}},
        {Op::readTapUID,
         -50,
         "Could not read the tap UID (error -50). " + permissionHint,
         {Op::destroyProcessTap}},
        {Op::createAggregateDevice,
         1852797029,
         "Could not create the capture device (error 1852797029). " + permissionHint,
         {Op::destroyProcessTap}},
        {Op::readInputStreamConfiguration,
         -10851,
         "Could not read the capture device's streams (error -10851). " + permissionHint,
         {Op::destroyAggregateDevice, Op::destroyProcessTap}},
        {Op::createIOProcID,
         -4,
         "Could not install the audio callback (error -4). " + permissionHint,
         {Op::destroyAggregateDevice, Op::destroyProcessTap}},
        {Op::deviceStart,
         560227702,
         "Could not start audio capture (error 560227702). " + permissionHint,
         {Op::deviceStop, Op::destroyIOProcID, Op::destroyAggregateDevice, Op::destroyProcessTap}},
    };
    for (const StepFailure& failure : failures) {
        SCOPED_TRACE(failure.message);
        world.taps->failOperation(failure.operation, failure.status);
        const std::optional<SpectrumError> error = pipeline.build();
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(error->message, failure.message);

        world.taps->clearCalls();
        pipeline.teardown();
        EXPECT_EQ(destroyCalls(), failure.removed);
        EXPECT_EQ(world.taps->liveObjectCount(), 0u);
        world.taps->failOperation(failure.operation, kNoErr);
    }
}

TEST_F(TapPipelineTest, WithoutADefaultOutputDeviceTheTapAloneIsRemoved) {
    world.audio->setDefaultOutputDevice(0);
    std::optional<SpectrumError> error = pipeline.build();
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->message, "No default output device available for the spectrum tap.");
    EXPECT_NE(pipeline.tapID(), 0u);
    EXPECT_EQ(pipeline.aggregateID(), 0u);
    world.taps->clearCalls();
    pipeline.teardown();
    EXPECT_EQ(destroyCalls(), (std::vector<Op>{Op::destroyProcessTap}));

    // A device whose UID cannot be read counts as none.
    world.audio->setDefaultOutputDevice(world.speakers);
    world.audio->injectFailure({.operation = SimAudioHardware::Operation::getString,
                                .object = world.speakers,
                                .selector = kAudioDevicePropertyDeviceUID,
                                .status = kAudioHardwareBadObjectError,
                                .times = std::nullopt});
    error = pipeline.build();
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(error->message, "No default output device available for the spectrum tap.");
}

TEST_F(TapPipelineTest, TapRateComesFromItsFormatOrFallsBackTo44100) {
    world.taps->setFormat(SimProcessTapHost::floatFormat(96000, 2));
    ASSERT_FALSE(pipeline.build().has_value());
    EXPECT_EQ(pipeline.tapSampleRate(), 96000.0);
    pipeline.teardown();
    EXPECT_EQ(pipeline.tapSampleRate(), 96000.0);  // kept after the chain is gone

    world.taps->setFormat(SimProcessTapHost::floatFormat(0, 2));
    ASSERT_FALSE(pipeline.build().has_value());
    EXPECT_EQ(pipeline.tapSampleRate(), 44100.0);
}

// --- The callback ---------------------------------------------------------------------------

class CaptureCallbackTest : public TapPipelineTest {
  protected:
    void start(const AudioStreamBasicDescription& format) {
        world.taps->setFormat(format);
        ASSERT_FALSE(pipeline.build().has_value());
    }
    void deliver(std::vector<AudioBufferView> buffers) {
        ASSERT_TRUE(
            world.taps->deliverBuffers(buffers.data(), static_cast<std::uint32_t>(buffers.size())));
    }
    std::int64_t framesHeld() const {
        for (std::int64_t n = SampleRingBuffer::capacity; n > 0; --n) {
            if (ring->latest(n)) return n;
        }
        return 0;
    }
};

TEST_F(CaptureCallbackTest, InterleavedStereoBytesBecomeWholeFrames) {
    start(SimProcessTapHost::floatFormat(48000, 2));
    std::vector<float> samples(1026, 0.25f);
    deliver({{2, 4096, samples.data()}});
    EXPECT_EQ(framesHeld(), 512);
    // 4100 bytes: 512 whole frames and a 4-byte tail that is dropped.
    deliver({{2, 4100, samples.data()}});
    EXPECT_EQ(framesHeld(), 1024);
}

TEST_F(CaptureCallbackTest, AFormatWithoutChannelsIsTakenAsMono) {
    start(SimProcessTapHost::floatFormat(48000, 0));
    std::vector<float> samples = {0.5f, -0.5f, 0.5f, -0.5f};
    deliver({{0, 16, samples.data()}});
    EXPECT_EQ(*ring->latest(4), samples);  // four mono samples, not two averaged frames
}

TEST_F(CaptureCallbackTest, NonInterleavedStereoFeedsOnlyTheFirstChannel) {
    start(SimProcessTapHost::floatFormat(48000, 2, false));
    std::vector<float> left(256, 0.5f);
    std::vector<float> right(256, 0.1f);
    deliver({{1, 1024, left.data()}, {1, 1024, right.data()}});
    EXPECT_EQ(framesHeld(), 256);
    const ChannelRMS rms = ring->levelSnapshot().channelRMS;
    EXPECT_FLOAT_EQ(rms.left, 0.5f);
    EXPECT_FLOAT_EQ(rms.right, 0.5f);
}

TEST_F(CaptureCallbackTest, EmptyListsAndMissingDataAreIgnored) {
    start(SimProcessTapHost::floatFormat(48000, 2));
    deliver({});
    deliver({{2, 4096, nullptr}});
    EXPECT_EQ(framesHeld(), 0);
    EXPECT_EQ(ring->levelSnapshot().lastWrite, MonoTime::min());
}

TEST_F(CaptureCallbackTest, TheTapIsReadBehindTheOutputDevicesOwnInputs) {
    // A headset's microphone and a line input, both loud, come first in the aggregate's list.
    auto microphone = std::make_shared<testing::ToneSource>();
    microphone->frequency = 187.5;
    microphone->leftAmplitude = microphone->rightAmplitude = 0.9f;
    world.taps->setDeviceInputs({microphone, microphone});
    world.tone->leftAmplitude = 0.5f;
    world.tone->rightAmplitude = 0.25f;
    for (const bool interleaved : {true, false}) {
        SCOPED_TRACE(interleaved ? "interleaved tap" : "one buffer per channel");
        start(SimProcessTapHost::floatFormat(48000, 2, interleaved));
        world.taps->deliverBlock();
        pipeline.teardown();
        // 512 frames hold exactly 11 periods of the tap's tone: RMS = amplitude / sqrt 2.
        const ChannelRMS rms = ring->levelSnapshot().channelRMS;
        EXPECT_NEAR(rms.left, 0.5f / std::sqrt(2.0f), 1e-3f);
        EXPECT_NEAR(rms.right, (interleaved ? 0.25f : 0.5f) / std::sqrt(2.0f), 1e-3f);
    }
}

TEST(TapBufferIndex, TheTapsBuffersAreTheLastOnesAndMustHaveItsShape) {
    const auto stereo = SimProcessTapHost::floatFormat(48000, 2);
    const auto split = SimProcessTapHost::floatFormat(48000, 2, false);
    EXPECT_EQ(tapBufferIndex({2}, stereo), 0u);
    EXPECT_EQ(tapBufferIndex({1, 2, 2}, stereo), 2u);  // a mono and a stereo input first
    EXPECT_EQ(tapBufferIndex({4, 1, 1}, split), 1u);
    // A list without the tap's buffers names none rather than a device input.
    EXPECT_EQ(tapBufferIndex({}, stereo), std::nullopt);
    EXPECT_EQ(tapBufferIndex({2, 1}, stereo), std::nullopt);
    EXPECT_EQ(tapBufferIndex({1}, split), std::nullopt);
    EXPECT_EQ(tapBufferIndex({1, 2}, split), std::nullopt);
}

TEST_F(CaptureCallbackTest, SimulatedBlocksArriveAsTheFormatSays) {
    // The host's own rendering: 512-frame blocks in each layout reach the ring whole.
    for (const bool interleaved : {true, false}) {
        start(SimProcessTapHost::floatFormat(48000, 2, interleaved));
        world.taps->deliverBlock();
        pipeline.teardown();
    }
    EXPECT_EQ(framesHeld(), 1024);
}

}  // namespace
}  // namespace corvanel
