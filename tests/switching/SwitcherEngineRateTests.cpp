// Applying a rate: the best-rate rule, the optional pause around the switch and its order of
// effects, the manual path, and the failure lines.
#include <gtest/gtest.h>

#include <algorithm>

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

    // Pausing on, and a running Music app in `playerState` whose track adds no technicals.
    std::shared_ptr<SwitcherEngine> startPausing(const std::string& playerState) {
        auto engine = start();
        engine->setPauseDuringSwitch(true);
        mac.music->setRunning(true);
        mac.music->setTrack(SimMusicApp::Track{"", "", ""});
        mac.music->setPlayerState(playerState);
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
    const auto engine = startPausing("playing");
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
    const auto engine = startPausing("paused");
    trackStarts(44100);
    EXPECT_EQ(mac.journal, (std::vector<std::string>{"technicals", "state",
                                                     "write 44.1 on " + std::to_string(speakers)}));

    mac.music->setAnswering(false);
    mac.journal.clear();
    trackStarts(96000);
    EXPECT_EQ(mac.journal, (std::vector<std::string>{"technicals", "state",
                                                     "write 96 on " + std::to_string(speakers)}));
}

TEST_F(SwitcherEngineRateTest, AMusicAppThatIsNotRunningIsNeverSentAScriptNorLaunched) {
    const auto engine = startPausing("playing");
    mac.music->setRunning(false);
    trackStarts(44100);
    EXPECT_EQ(mac.journal, std::vector<std::string>{"write 44.1 on " + std::to_string(speakers)});
    EXPECT_FALSE(mac.music->isApplicationRunning(MusicScripts::musicBundleIdentifier));

    // Music quits while the switch waits for the pause: nothing more is sent, the switch still
    // happens and the track is not restarted (which would launch Music again).
    mac.music->setRunning(true);
    mac.music->setPlayerState("playing");
    mac.music->answerStateFor(2, "playing");
    mac.journal.clear();
    trackStarts(96000);
    EXPECT_EQ(mac.journal, (std::vector<std::string>{"technicals", "state", "pause", "state"}));
    mac.music->setRunning(false);
    // Long enough for the whole sequence to end, its restart attempts included.
    mac.executor->advanceBy(10s);
    EXPECT_EQ(mac.journal, (std::vector<std::string>{"technicals", "state", "pause", "state",
                                                     "write 96 on " + std::to_string(speakers)}));
    EXPECT_FALSE(mac.music->isApplicationRunning(MusicScripts::musicBundleIdentifier));
}

TEST_F(SwitcherEngineRateTest, APauseNeverConfirmedOrAFailedWriteStillWaitsAndRestarts) {
    const auto engine = startPausing("playing");
    const std::vector<std::string> restart{"rewind", "position", "play", "state", "position"};

    // The state check and all ten polls still read "playing": the switch follows the last
    // poll's wait, one second after the pause.
    mac.music->answerStateFor(11, "playing");
    trackStarts(44100);
    mac.executor->advanceBy(0.99s);
    EXPECT_TRUE(mac.rateWrites().empty());
    mac.executor->advanceBy(0.01s);
    EXPECT_EQ(mac.rateWrites(), std::vector<std::string>{"44.1 on " + std::to_string(speakers)});
    mac.journal.clear();
    mac.executor->advanceBy(0.5s);
    EXPECT_EQ(mac.journal, restart);

    // The write fails after a confirmed pause: the failure is logged, the fields stay, and the
    // track is still restarted after the half-second wait.
    mac.audio->injectFailure({SimAudioHardware::Operation::setData, speakers,
                              kAudioDevicePropertyNominalSampleRate,
                              kAudioHardwareIllegalOperationError, std::nullopt});
    mac.executor->advanceBy(2s);
    mac.journal.clear();
    trackStarts(96000);
    EXPECT_EQ(activityTexts(engine->activity())[0], "Failed to set 96 kHz on Speakers");
    EXPECT_EQ(engine->deviceRate(), 44100);
    EXPECT_EQ(mac.journal, (std::vector<std::string>{"technicals", "state", "pause", "state",
                                                     "write 96 on " + std::to_string(speakers)}));
    mac.journal.clear();
    mac.executor->advanceBy(0.49s);
    EXPECT_TRUE(mac.journal.empty());
    mac.executor->advanceBy(0.01s);
    EXPECT_EQ(mac.journal, restart);
    EXPECT_EQ(mac.music->playerState(), "playing");
}

TEST_F(SwitcherEngineRateTest, ADeviceChangeDuringThePauseLeavesTheSwitchWithItsOwnDevice) {
    const AudioObjectID dac = mac.addDevice("DAC", 44100, {44100, 48000});
    const auto engine = startPausing("playing");
    mac.music->setPosition(30);
    // The pause is confirmed at the second poll, 0.1 s after the first.
    mac.music->answerStateFor(2, "playing");

    trackStarts(96000);
    ASSERT_TRUE(mac.rateWrites().empty());
    mac.audio->setDefaultOutputDevice(dac);
    mac.executor->advanceBy(2s);

    // The DAC gets its own best rate at once (playback is already paused); the Speakers' switch
    // goes on to the Speakers.
    EXPECT_EQ(mac.rateWrites(), (std::vector<std::string>{"48 on " + std::to_string(dac),
                                                          "96 on " + std::to_string(speakers)}));
    EXPECT_EQ(mac.audio->nominalRate(speakers), 96000);
    EXPECT_EQ(mac.audio->nominalRate(dac), 48000);
    const std::vector<std::string> texts = activityTexts(engine->activity());
    EXPECT_EQ(
        std::vector<std::string>(texts.begin(), texts.begin() + 4),
        (std::vector<std::string>{"Speakers \u2192 96 kHz", "DAC \u2192 48 kHz",
                                  "Device lacks 96 kHz, using 48 kHz", "Output device now DAC"}));
    EXPECT_EQ(engine->deviceName(), "DAC");
    EXPECT_EQ(engine->deviceRate(), 48000);
    EXPECT_EQ(engine->menuBarTitle(), "48 kHz");
    EXPECT_EQ(std::count(mac.journal.begin(), mac.journal.end(), "play"), 1);
}

TEST_F(SwitcherEngineRateTest, ARateTheDeviceAlreadyRunsChangesNothingEvenWhilePlaying) {
    const auto engine = startPausing("playing");
    mac.music->setTrack(SimMusicApp::Track{"48000", "", "Apple Lossless audio file"});
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
