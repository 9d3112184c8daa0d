// Applying a rate: the best-rate rule, the optional pause around the switch and its order of
// effects, the manual path, and the failure lines.
#include <gtest/gtest.h>

#include "SimulatedMac.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;
using testing::activityTexts;
using testing::SimulatedMac;

TEST(BestRate, PrefersExactThenMultiplesThenAnythingAboveThenTheLargest) {
    using Rates = std::vector<double>;
    EXPECT_EQ(SwitcherEngine::bestRate(44100, Rates{44100, 48000, 96000}), 44100);
    EXPECT_EQ(SwitcherEngine::bestRate(44100, Rates{48000, 88200, 96000}), 88200);
    EXPECT_EQ(SwitcherEngine::bestRate(44100, Rates{48000, 96000, 192000}), 48000);
    EXPECT_EQ(SwitcherEngine::bestRate(96000, Rates{44100, 48000}), 48000);
    EXPECT_EQ(SwitcherEngine::bestRate(44100, Rates{}), std::nullopt);
    // List order matters only for the exact match; otherwise the smallest qualifying rate wins.
    EXPECT_EQ(SwitcherEngine::bestRate(44100, Rates{352800, 176400, 88200, 48000}), 88200);
    EXPECT_EQ(SwitcherEngine::bestRate(44100, Rates{192000, 96000, 48000}), 48000);
    EXPECT_EQ(SwitcherEngine::bestRate(44100, Rates{44100.9, 44100.2}), 44100.9);
    // A fractional app rate: 44100.4 is within 1 Hz of 44100.
    EXPECT_EQ(SwitcherEngine::bestRate(44100.4, Rates{48000, 44100}), 44100);
}

class SwitcherEngineRateTest : public ::testing::Test {
  protected:
    SwitcherEngineRateTest() {
        speakers = mac.addDevice("Speakers", 48000, {44100, 48000, 96000});
        mac.audio->setDefaultOutputDevice(speakers);
        mac.music->setRunning(false);
    }

    std::shared_ptr<SwitcherEngine> start() {
        auto engine = SwitcherEngine::create(mac.ports());
        mac.executor->runUntilIdle();
        mac.journal.clear();
        return engine;
    }

    // A decoder message for `rate` Hz lands in the log and the player starts; the first scan
    // runs 0.6 s later.
    void trackStarts(int rate) {
        mac.log->add("Music",
                     "Creating AudioQueue 0x1 with sampleRate:" + std::to_string(rate) + ".0, ch:2",
                     mac.secondsIn(0));
        mac.postPlayerState("Playing");
        mac.executor->advanceBy(0.6s);
    }

    SimulatedMac mac;
    AudioObjectID speakers = 0;
};

TEST_F(SwitcherEngineRateTest, PausingWrapsTheSwitchInPauseWaitAndRestartInThatOrder) {
    const auto engine = start();
    engine->setPauseDuringSwitch(true);
    mac.music->setRunning(true);
    mac.music->setTrack(SimMusicApp::Track{"", "", ""});  // no technicals to add
    mac.music->setPlayerState("playing");
    mac.music->setPosition(30);
    // The state check before pausing sees "playing"; the pause is confirmed at the third poll.
    mac.music->answerStateFor(3, "playing");

    trackStarts(44100);
    const std::string device = std::to_string(speakers);
    const std::vector<std::string> untilSwitch{
        "technicals", "state", "pause", "state", "state", "state", "write 44.1 on " + device};
    // The switch waits for two 0.1 s polls.
    mac.executor->advanceBy(0.2s);
    EXPECT_EQ(mac.journal, untilSwitch);
    EXPECT_EQ(activityTexts(engine->activity())[0], "Speakers \u2192 44.1 kHz");

    mac.executor->advanceBy(0.49s);
    EXPECT_EQ(mac.journal.size(), untilSwitch.size());
    mac.executor->advanceBy(0.01s);
    std::vector<std::string> expected = untilSwitch;
    for (const char* label : {"rewind", "position", "play", "state", "position"})
        expected.emplace_back(label);
    EXPECT_EQ(mac.journal, expected);
    EXPECT_EQ(mac.music->playerState(), "playing");
    EXPECT_EQ(engine->deviceRate(), 44100);
}

TEST_F(SwitcherEngineRateTest, APausedOrSilentPlayerIsSwitchedAtOnceWithoutARestart) {
    const auto engine = start();
    engine->setPauseDuringSwitch(true);
    mac.music->setRunning(true);
    mac.music->setTrack(SimMusicApp::Track{"", "", ""});
    mac.music->setPlayerState("paused");
    trackStarts(44100);
    EXPECT_EQ(mac.journal, (std::vector<std::string>{"technicals", "state",
                                                     "write 44.1 on " + std::to_string(speakers)}));

    mac.music->setAnswering(false);
    mac.journal.clear();
    trackStarts(96000);
    EXPECT_EQ(mac.journal, (std::vector<std::string>{"technicals", "state",
                                                     "write 96 on " + std::to_string(speakers)}));
}

TEST_F(SwitcherEngineRateTest, ARateTheDeviceAlreadyRunsChangesNothingEvenWhilePlaying) {
    const auto engine = start();
    engine->setPauseDuringSwitch(true);
    mac.music->setRunning(true);
    mac.music->setTrack(SimMusicApp::Track{"48000", "", "Apple Lossless audio file"});
    mac.music->setPlayerState("playing");
    const std::vector<std::string> before = engine->activity();
    trackStarts(48000);
    EXPECT_EQ(mac.journal, std::vector<std::string>{"technicals"});
    EXPECT_EQ(engine->activity().size(), before.size() + 1);  // only the Detected line
    EXPECT_TRUE(mac.rateWrites().empty());
}

TEST_F(SwitcherEngineRateTest, AMissingSourceRateIsReplacedAndSaidSo) {
    const AudioObjectID dac = mac.addDevice("DAC", 96000, {48000, 96000});
    mac.audio->setDefaultOutputDevice(dac);
    const auto engine = start();
    trackStarts(44100);
    EXPECT_EQ(activityTexts(engine->activity()),
              (std::vector<std::string>{"DAC \u2192 48 kHz", "Device lacks 44.1 kHz, using 48 kHz",
                                        "Detected 44.1 kHz (AudioQueue)",
                                        "Started \u2014 watching Apple Music track changes",
                                        "DAC output depth \u2192 24-bit (max)"}));
    EXPECT_EQ(mac.audio->nominalRate(dac), 48000);
}

TEST_F(SwitcherEngineRateTest, AFailedWriteIsLoggedAndKeepsTheFields) {
    const auto engine = start();
    mac.audio->injectFailure({SimAudioHardware::Operation::setData, speakers,
                              kAudioDevicePropertyNominalSampleRate,
                              kAudioHardwareIllegalOperationError, std::nullopt});
    trackStarts(96000);
    EXPECT_EQ(activityTexts(engine->activity())[0], "Failed to set 96 kHz on Speakers");
    EXPECT_EQ(engine->deviceRate(), 48000);
    EXPECT_EQ(engine->deviceBitDepth(), 24u);
}

TEST_F(SwitcherEngineRateTest, ADeviceWithoutRatesRefusesChanges) {
    SimAudioHardware::DeviceSpec fixed;
    fixed.name = "HDMI";
    fixed.nominalRate = 48000;
    const AudioObjectID hdmi = mac.audio->addDevice(fixed);
    mac.audio->setDefaultOutputDevice(hdmi);
    const auto engine = start();
    trackStarts(44100);
    EXPECT_EQ(activityTexts(engine->activity())[0], "HDMI does not allow sample rate changes");
    EXPECT_TRUE(mac.rateWrites().empty());
}

TEST_F(SwitcherEngineRateTest, TheManualPathLogsEvenTheCurrentRateAndTheDepthLineComesSecond) {
    // A device whose 96 kHz format offers 32 bits, so switching there raises the depth.
    SimAudioHardware::DeviceSpec setup;
    setup.name = "Interface";
    setup.nominalRate = 48000;
    setup.availableRates = {{44100, 96000}};
    SimAudioHardware::StreamSpec stream;
    stream.availableFormats = {SimAudioHardware::linearPCM(48000, 24),
                               SimAudioHardware::linearPCM(96000, 32)};
    stream.physicalFormat = SimAudioHardware::linearPCM(48000, 24).mFormat;
    setup.outputStreams = {stream};
    const AudioObjectID interface = mac.audio->addDevice(setup);
    mac.audio->setDefaultOutputDevice(interface);
    const auto engine = start();
    ASSERT_EQ(engine->deviceBitDepth(), 24u);
    const std::size_t lines = engine->activity().size();

    spawn(mac.executor, engine->setRate(48000, interface));
    mac.executor->runUntilIdle();
    EXPECT_EQ(engine->activity().size(), lines + 1);
    EXPECT_EQ(activityTexts(engine->activity())[0], "Interface \u2192 48 kHz");

    spawn(mac.executor, engine->setRate(96000, interface));
    mac.executor->runUntilIdle();
    EXPECT_EQ(activityTexts(engine->activity())[0], "Interface output depth \u2192 32-bit (max)");
    EXPECT_EQ(activityTexts(engine->activity())[1], "Interface \u2192 96 kHz");
    EXPECT_EQ(engine->deviceBitDepth(), 32u);
    EXPECT_EQ(engine->deviceText(), "96 kHz \u00B7 32-bit");
    EXPECT_FALSE(engine->detection());
}

}  // namespace
}  // namespace corvanel
