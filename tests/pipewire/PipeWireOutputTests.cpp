// The output device over a real PipeWire session, through the audio-object port: the default sink
// with its name, UID, rates and stream; rate writes that PipeWire really runs; listeners that
// hear other programs and the user; what it gives back when it goes; and a daemon that is
// missing, stopped or gone.
#include <signal.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <set>

#include "ChildProcess.h"
#include "PipeWireTestWorld.h"

namespace corvanel::testing {
namespace {

using Clock = std::chrono::steady_clock;

std::chrono::milliseconds since(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
}

TEST_F(PipeWireTest, TheDefaultSinkIsTheOutputDeviceWithItsNameUIDRatesAndOneStream) {
    std::cout << "measured: private session up in " << session.startTime().count() << " ms\n";
    const auto connecting = Clock::now();
    const PipeWireOutput output = connect();
    std::cout << "measured: connected with the first snapshot in " << since(connecting).count()
              << " ms\n";
    ASSERT_TRUE(output.audio);
    AudioHardware& audio = *output.audio;

    const AudioObjectID device = defaultDevice(audio);
    EXPECT_GT(device, kAudioObjectSystemObject);
    EXPECT_EQ(CoreAudioHelper::deviceName(audio, device),
              PipeWireTestSession::firstSinkDescription);
    EXPECT_EQ(CoreAudioHelper::deviceUID(audio, device), PipeWireTestSession::firstSink);
    // ALSA's null device takes any rate, so every standard rate is on offer.
    EXPECT_EQ(CoreAudioHelper::availableSampleRates(audio, device),
              std::vector<double>(std::begin(CoreAudioHelper::standardRates),
                                  std::end(CoreAudioHelper::standardRates)));
    // Nothing has played: the sink sleeps, and it will start at the graph's default rate.
    EXPECT_EQ(session.sinkRate(PipeWireTestSession::firstSink), 0);
    EXPECT_EQ(CoreAudioHelper::nominalRate(audio, device), PipeWireTestSession::defaultRate);

    const std::vector<AudioObjectID> streams = CoreAudioHelper::outputStreams(audio, device);
    ASSERT_EQ(streams.size(), 1u);
    EXPECT_GT(streams[0], kAudioObjectSystemObject);
    EXPECT_NE(streams[0], device);
    // A sleeping sink runs no format: reading one fails rather than inventing it.
    AudioStreamBasicDescription format;
    std::uint32_t size = sizeof format;
    EXPECT_EQ(audio.getPropertyData(streams[0], globalAddress(kAudioStreamPropertyPhysicalFormat),
                                    size, &format),
              kAudioHardwareNotRunningError);
}

TEST_F(PipeWireTest, ARateWriteMakesPipeWireRunTheSinkAtThatRate) {
    ASSERT_TRUE(playInto(PipeWireTestSession::firstSink));
    const PipeWireOutput output = connect();
    ASSERT_TRUE(output.audio);
    AudioHardware& audio = *output.audio;
    const AudioObjectID device = defaultDevice(audio);
    EXPECT_EQ(CoreAudioHelper::nominalRate(audio, device), 48000);
    CountingListener listener;
    listen(audio, device, kAudioDevicePropertyNominalSampleRate, listener);

    const auto written = Clock::now();
    ASSERT_EQ(writeRate(audio, device, 96000), kNoErr);
    EXPECT_TRUE(session.waitForSinkRate(PipeWireTestSession::firstSink, 96000));
    std::cout << "measured: rate write to the sink's Format at 96 kHz (read by pw-dump) "
              << since(written).count() << " ms\n";
    EXPECT_TRUE(pumpUntil([&] { return CoreAudioHelper::nominalRate(audio, device) == 96000; }));
    EXPECT_GE(listener.calls, 1);
    EXPECT_FALSE(listener.offMainThread);

    // Wrong sizes and rates nothing can run are refused without touching the graph.
    const float shortRate = 44100;
    EXPECT_EQ(audio.setPropertyData(device, globalAddress(kAudioDevicePropertyNominalSampleRate),
                                    sizeof shortRate, &shortRate),
              kAudioHardwareBadPropertySizeError);
    EXPECT_EQ(writeRate(audio, device, 0), kAudioDeviceUnsupportedFormatError);
    EXPECT_EQ(session.forcedRate(), 96000);
}

TEST_F(PipeWireTest, AnotherProgramsRateReachesTheRateListenerOnTheMainThread) {
    ASSERT_TRUE(playInto(PipeWireTestSession::firstSink));
    const PipeWireOutput output = connect();
    ASSERT_TRUE(output.audio);
    AudioHardware& audio = *output.audio;
    const AudioObjectID device = defaultDevice(audio);
    CountingListener listener;
    const PropertyListenerID id =
        listen(audio, device, kAudioDevicePropertyNominalSampleRate, listener);

    ASSERT_TRUE(session.forceRateAsAnotherProgram(88200));
    EXPECT_TRUE(pumpUntil([&] {
        return listener.calls > 0 && CoreAudioHelper::nominalRate(audio, device) == 88200;
    }));
    EXPECT_FALSE(listener.offMainThread);
    EXPECT_EQ(session.sinkRate(PipeWireTestSession::firstSink), 88200);

    // Removed by its id, it hears nothing more; a second removal is refused.
    const auto address = globalAddress(kAudioDevicePropertyNominalSampleRate);
    EXPECT_EQ(audio.removePropertyListener(device, address, id), kNoErr);
    EXPECT_NE(audio.removePropertyListener(device, address, id), kNoErr);
    const int callsBefore = listener.calls;
    ASSERT_TRUE(session.forceRateAsAnotherProgram(44100));
    EXPECT_TRUE(pumpUntil([&] { return CoreAudioHelper::nominalRate(audio, device) == 44100; }));
    EXPECT_EQ(listener.calls, callsBefore);
}

TEST_F(PipeWireTest, TheUsersNewDefaultSinkReachesTheDefaultDeviceListener) {
    const PipeWireOutput output = connect();
    ASSERT_TRUE(output.audio);
    AudioHardware& audio = *output.audio;
    const AudioObjectID first = defaultDevice(audio);
    const AudioObjectID firstStream = CoreAudioHelper::outputStreams(audio, first).at(0);
    CountingListener listener;
    listen(audio, kAudioObjectSystemObject, kAudioHardwarePropertyDefaultOutputDevice, listener);

    ASSERT_TRUE(session.setDefaultSink(PipeWireTestSession::secondSink));
    ASSERT_TRUE(pumpUntil([&] { return listener.calls > 0 && defaultDevice(audio) != first; }));
    EXPECT_FALSE(listener.offMainThread);
    const AudioObjectID second = defaultDevice(audio);
    EXPECT_EQ(CoreAudioHelper::deviceName(audio, second),
              PipeWireTestSession::secondSinkDescription);
    EXPECT_EQ(CoreAudioHelper::deviceUID(audio, second), PipeWireTestSession::secondSink);
    // Devices and streams never share an id, nor take the ids of "none" and the system.
    const AudioObjectID secondStream = CoreAudioHelper::outputStreams(audio, second).at(0);
    const std::set<AudioObjectID> ids = {first, firstStream, second, secondStream};
    EXPECT_EQ(ids.size(), 4u);
    EXPECT_FALSE(ids.contains(kAudioObjectUnknown));
    EXPECT_FALSE(ids.contains(kAudioObjectSystemObject));
}

TEST_F(PipeWireTest, SinksThatComeAndGoGetIdsOfTheirOwn) {
    const PipeWireOutput output = connect();
    ASSERT_TRUE(output.audio);
    AudioHardware& audio = *output.audio;
    const AudioObjectID first = defaultDevice(audio);
    const auto defaultNamed = [&](const std::string& name) {
        return CoreAudioHelper::deviceName(audio, defaultDevice(audio)) == name;
    };

    ASSERT_TRUE(session.addSink("corvanel_dac_c", "Test DAC C"));
    ASSERT_TRUE(session.setDefaultSink("corvanel_dac_c"));
    ASSERT_TRUE(pumpUntil([&] { return defaultNamed("Test DAC C"); }));
    const AudioObjectID plugged = defaultDevice(audio);
    EXPECT_NE(plugged, first);

    // Unplugged: WirePlumber falls back to another sink, and the old id answers nothing.
    ASSERT_TRUE(session.removeSink("corvanel_dac_c"));
    ASSERT_TRUE(pumpUntil([&] { return defaultDevice(audio) == first; }));
    std::string name;
    EXPECT_EQ(audio.getPropertyString(plugged, globalAddress(kAudioObjectPropertyName), name),
              kAudioHardwareBadObjectError);

    // Plugged in again, it is a new device to the program: its old id is not reused.
    ASSERT_TRUE(session.addSink("corvanel_dac_c", "Test DAC C"));
    ASSERT_TRUE(session.setDefaultSink("corvanel_dac_c"));
    ASSERT_TRUE(pumpUntil([&] { return defaultNamed("Test DAC C"); }))
        << "default " << defaultDevice(audio) << " named "
        << CoreAudioHelper::deviceName(audio, defaultDevice(audio))
        << "; WirePlumber: " << session.defaultSink();
    EXPECT_NE(defaultDevice(audio), plugged);
}

TEST_F(PipeWireTest, DepthWritesFailAndTheDeviceKeepsTheDepthPipeWireRuns) {
    ASSERT_TRUE(playInto(PipeWireTestSession::firstSink));
    const PipeWireOutput output = connect();
    ASSERT_TRUE(output.audio);
    AudioHardware& audio = *output.audio;
    const AudioObjectID device = defaultDevice(audio);
    const AudioObjectID stream = CoreAudioHelper::outputStreams(audio, device).at(0);

    const auto offered = readPropertyArray<AudioStreamRangedDescription>(
        audio, stream, globalAddress(kAudioStreamPropertyAvailablePhysicalFormats));
    ASSERT_TRUE(offered);
    std::set<std::pair<std::uint32_t, bool>> depths;
    for (const AudioStreamRangedDescription& entry : *offered) {
        EXPECT_EQ(entry.mFormat.mFormatID, kAudioFormatLinearPCM);
        depths.insert({entry.mFormat.mBitsPerChannel,
                       (entry.mFormat.mFormatFlags & kAudioFormatFlagIsFloat) != 0});
    }
    for (const auto& depth : {std::pair<std::uint32_t, bool>{16, false},
                              {24, false},
                              {32, false},
                              {32, true},
                              {64, true}})
        EXPECT_TRUE(depths.contains(depth)) << depth.first << (depth.second ? " float" : " int");

    // The sink runs PipeWire's own choice (32-bit float for this one), which no client sets.
    AudioStreamBasicDescription running;
    std::uint32_t size = sizeof running;
    ASSERT_EQ(audio.getPropertyData(stream, globalAddress(kAudioStreamPropertyPhysicalFormat), size,
                                    &running),
              kNoErr);
    EXPECT_EQ(running.mSampleRate, 48000);
    EXPECT_EQ(running.mBitsPerChannel, 32u);
    EXPECT_NE(running.mFormatFlags & kAudioFormatFlagIsFloat, 0u);
    AudioStreamBasicDescription deeper = running;
    deeper.mBitsPerChannel = 64;
    EXPECT_EQ(audio.setPropertyData(stream, globalAddress(kAudioStreamPropertyPhysicalFormat),
                                    sizeof deeper, &deeper),
              kAudioHardwareUnsupportedOperationError);
    // The rule for a refused write reports the depth the stream runs.
    EXPECT_EQ(CoreAudioHelper::setMaxBitDepth(audio, device, 48000), 32u);
}

TEST_F(PipeWireTest, GoingAwayGivesBackTheForcedRateItFound) {
    for (const int before : {0, 44100}) {
        ASSERT_TRUE(session.forceRateAsAnotherProgram(before));
        PipeWireOutput output = connect();
        ASSERT_TRUE(output.audio);
        ASSERT_EQ(writeRate(*output.audio, defaultDevice(*output.audio), 96000), kNoErr);
        ASSERT_EQ(writeRate(*output.audio, defaultDevice(*output.audio), 88200), kNoErr);
        ASSERT_TRUE(pumpUntil([&] { return session.forcedRate() == 88200; }));

        const auto released = Clock::now();
        output = {};
        EXPECT_LT(since(released), 1000ms);
        EXPECT_EQ(session.forcedRate(), before);
    }
}

TEST_F(PipeWireTest, GoingAwayLeavesARateAnotherProgramForcedSince) {
    PipeWireOutput output = connect();
    ASSERT_TRUE(output.audio);
    ASSERT_EQ(writeRate(*output.audio, defaultDevice(*output.audio), 96000), kNoErr);
    ASSERT_TRUE(pumpUntil([&] { return session.forcedRate() == 96000; }));
    ASSERT_TRUE(session.forceRateAsAnotherProgram(176400));

    output = {};
    EXPECT_EQ(session.forcedRate(), 176400);
}

TEST_F(PipeWireTest, PlaybackStreamsAreFoundByTheProcessThatPlaysThem) {
    const PipeWireOutput output = connect();
    ASSERT_TRUE(output.playbackStreams);
    ASSERT_TRUE(playInto(PipeWireTestSession::secondSink));
    const pid_t player = players.back();

    std::optional<PlaybackStreamFormat> stream;
    EXPECT_TRUE(pumpUntil([&] {
        stream = output.playbackStreams->streamOfProcess(player);
        return stream.has_value();
    }));
    ASSERT_TRUE(stream);
    // What the player opened: its file is 8 kHz 16-bit.
    EXPECT_EQ(stream->sampleRate, 8000);
    EXPECT_EQ(stream->sampleFormat, "S16LE");
    EXPECT_FALSE(output.playbackStreams->streamOfProcess(getpid()));

    stopPlaying();
    EXPECT_TRUE(pumpUntil([&] { return !output.playbackStreams->streamOfProcess(player); }));
}

TEST_F(PipeWireTest, ADaemonThatQuitsLeavesNoDeviceAndNothingHangs) {
    PipeWireOutput output = connect();
    ASSERT_TRUE(output.audio);
    AudioHardware& audio = *output.audio;
    ASSERT_EQ(writeRate(audio, defaultDevice(audio), 96000), kNoErr);
    CountingListener listener;
    listen(audio, kAudioObjectSystemObject, kAudioHardwarePropertyDefaultOutputDevice, listener);

    kill(session.daemonPid(), SIGKILL);
    EXPECT_TRUE(pumpUntil([&] { return listener.calls > 0; }));
    EXPECT_EQ(defaultDevice(audio), kAudioObjectUnknown);

    const auto released = Clock::now();
    output = {};
    EXPECT_LT(since(released), 500ms);
}

TEST_F(PipeWireTest, AStoppedDaemonFailsTheConnectionAtItsDeadline) {
    kill(session.daemonPid(), SIGSTOP);
    const auto started = Clock::now();
    auto result = connectPipeWireOutput(executor, 300ms);
    const auto waited = since(started);
    kill(session.daemonPid(), SIGCONT);

    ASSERT_TRUE(std::holds_alternative<std::string>(result));
    EXPECT_EQ(std::get<std::string>(result), "PipeWire did not answer within 300 ms");
    EXPECT_GE(waited, 250ms);
    EXPECT_LT(waited, 1000ms);
}

// Points this process's PipeWire clients at an empty runtime directory while it lives.
class NoDaemonAround {
  public:
    NoDaemonAround() : directory_(makePrivateDirectory("corvanel-no-pipewire-")) {
        for (const char* name : {"PIPEWIRE_RUNTIME_DIR", "PIPEWIRE_REMOTE"}) {
            if (const char* value = std::getenv(name)) previous_.emplace_back(name, value);
        }
        setenv("PIPEWIRE_RUNTIME_DIR", directory_.c_str(), 1);
        setenv("PIPEWIRE_REMOTE", "pipewire-0", 1);
    }
    ~NoDaemonAround() {
        unsetenv("PIPEWIRE_RUNTIME_DIR");
        unsetenv("PIPEWIRE_REMOTE");
        for (const auto& [name, value] : previous_)
            setenv(name.c_str(), value.c_str(), 1);
        std::filesystem::remove_all(directory_);
    }
    NoDaemonAround(const NoDaemonAround&) = delete;
    NoDaemonAround& operator=(const NoDaemonAround&) = delete;

  private:
    std::filesystem::path directory_;
    std::vector<std::pair<std::string, std::string>> previous_;
};

TEST(PipeWireWithoutDaemon, TheConnectionFailsAtOnceWithAPlainMessage) {
    const NoDaemonAround noDaemon;
    const auto started = Clock::now();
    auto result = connectPipeWireOutput(std::make_shared<VirtualTimeExecutor>(), 2000ms);
    const auto waited = since(started);

    ASSERT_TRUE(std::holds_alternative<std::string>(result));
    EXPECT_EQ(std::get<std::string>(result), "PipeWire is not running");
    EXPECT_LT(waited, 500ms);
}

}  // namespace
}  // namespace corvanel::testing
