// The unchanged engine following a real player through the adapter, with a simulated output
// device: a track change seen by Metadata alone is detected from the track file's header, and
// with pausing on, the player is paused before the rate changes and restarted from the top.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "MprisTestRig.h"
#include "TestAudioFiles.h"
#include "demo/MusicSynthesizer.h"
#include "platform/sim/SimAudioHardware.h"
#include "platform/sim/SimLoginItems.h"
#include "platform/sim/SimProcessTapHost.h"
#include "platform/sim/SimSettingsStore.h"
#include "switching/SwitcherEngine.h"

namespace corvanel::testing {
namespace {

struct TimedCall {
    double time;  // the player's monotonic clock, in seconds
    std::string call;
};

std::vector<TimedCall> timedCalls(const TestPlayerProcess& player) {
    std::vector<TimedCall> calls;
    std::istringstream lines(readTextFile(player.journal));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t space = line.find(' ');
        if (space == std::string::npos) continue;
        calls.push_back({std::stod(line.substr(0, space)), line.substr(space + 1)});
    }
    return calls;
}

// The first call starting with `start` after `after` (in the player's time).
std::optional<TimedCall> firstCall(const std::vector<TimedCall>& calls, const std::string& start,
                                   double after = 0) {
    for (const TimedCall& call : calls) {
        if (call.time > after && call.call.rfind(start, 0) == 0) return call;
    }
    return std::nullopt;
}

double monotonicSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

AudioObjectID addDac(SimAudioHardware& audio) {
    SimAudioHardware::DeviceSpec device;
    device.name = "Test DAC";
    device.uid = "test-dac";
    device.nominalRate = 44100;
    SimAudioHardware::StreamSpec stream;
    for (const double rate : {44100.0, 48000.0, 88200.0, 96000.0}) {
        device.availableRates.push_back({rate, rate});
        stream.availableFormats.push_back(SimAudioHardware::linearPCM(rate, 16));
        stream.availableFormats.push_back(SimAudioHardware::linearPCM(rate, 24));
    }
    stream.physicalFormat = SimAudioHardware::linearPCM(44100, 16).mFormat;
    device.outputStreams.push_back(stream);
    const AudioObjectID dac = audio.addDevice(device);
    audio.setDefaultOutputDevice(dac);
    return dac;
}

TEST(EngineFollowingAPlayer, DetectsEachTrackAndRestartsItAroundTheSwitch) {
    MprisTestRig rig;
    ASSERT_EQ(rig.failure(), "");
    const auto hires = rig.directory() / "hires.flac";
    const auto lossy = rig.directory() / "lossy.mp3";
    ASSERT_TRUE(writeToneFile(hires, SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 96000, 3.0));
    ASSERT_TRUE(writeToneFile(lossy, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 44100, 3.0, 2,
                              mp3At256kbps));

    const MprisPorts& mpris = rig.start();
    auto audio = std::make_shared<SimAudioHardware>(rig.executor);
    addDac(*audio);
    std::vector<std::pair<double, double>> rateWrites;  // (monotonic time, rate)
    audio->setWriteObserver([&rateWrites](const SimAudioHardware::Write& write) {
        if (write.address.mSelector == kAudioDevicePropertyNominalSampleRate)
            rateWrites.emplace_back(monotonicSeconds(), write.rate());
    });
    auto settings = std::make_shared<SimSettingsStore>();
    settings->preset("spectrumEnabled", false);
    settings->preset(SwitcherEngine::pauseDuringSwitchKey, true);
    PlatformPorts ports;
    ports.executor = rig.executor;
    ports.audio = audio;
    ports.taps = std::make_shared<SimProcessTapHost>(std::make_shared<MusicSynthesizer>(),
                                                     SimProcessTapHost::Pacing::manual);
    ports.systemLog = mpris.systemLog;
    ports.scripts = mpris.scripts;
    ports.notifications = mpris.notifications;
    ports.settings = settings;
    ports.loginItems = std::make_shared<SimLoginItems>();
    const auto engine = SwitcherEngine::create(ports);

    const TestPlayerProcess player = rig.startPlayer(1, {"--open", hires.string(), "--play"});
    const auto restarted = [&] {
        const std::vector<TimedCall> calls = timedCalls(player);
        const auto pause = firstCall(calls, "Pause |");
        return pause && firstCall(calls, "Play |", pause->time);
    };
    ASSERT_TRUE(
        waitFor([&] { return restarted() && engine->detectedText() == "96 kHz · 24-bit"; }, 8000))
        << engine->detectedText();
    EXPECT_EQ(engine->deviceRate(), 96000);
    EXPECT_TRUE(std::any_of(
        engine->activity().begin(), engine->activity().end(), [](const std::string& line) {
            return line.ends_with("  Detected 96 kHz / 24-bit (FLAC audio file)");
        }));

    // Paused before the rate changed, back at the start and playing after it.
    const std::vector<TimedCall> calls = timedCalls(player);
    const auto pause = firstCall(calls, "Pause |");
    ASSERT_TRUE(pause);
    const auto rewind = firstCall(calls, "SetPosition ", pause->time);
    const auto play = firstCall(calls, "Play |", pause->time);
    ASSERT_TRUE(rewind && play);
    EXPECT_NE(play->call.find("status=Playing position=0.0"), std::string::npos) << play->call;
    ASSERT_EQ(rateWrites.size(), 1u);
    EXPECT_EQ(rateWrites[0].second, 96000);
    EXPECT_LT(pause->time, rateWrites[0].first);
    EXPECT_LT(rateWrites[0].first, rewind->time);
    EXPECT_LT(rewind->time, play->time);

    // The next track arrives as Metadata alone.
    rig.open(player, lossy);
    ASSERT_TRUE(waitFor([&] { return engine->detectedText() == "44.1 kHz · 256 kbps"; }, 8000))
        << engine->detectedText();
    ASSERT_TRUE(waitFor([&] { return engine->deviceRate() == 44100; }, 4000));
}

}  // namespace
}  // namespace corvanel::testing
