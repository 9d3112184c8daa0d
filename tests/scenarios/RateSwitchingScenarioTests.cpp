// Corvanel on Linux following a real player and switching a real PipeWire sink: detections, the
// rate PipeWire really runs, pausing around a switch, a new default sink, a rate another program
// forces, and the forced rate given back when Corvanel quits.
#include <gtest/gtest.h>

#include <algorithm>
#include <variant>

#include "LinuxSessionRig.h"
#include "platform/linux/pipewire/PipeWireOutput.h"
#include "platform/qt/QtMainExecutor.h"
#include "switching/PropertyReads.h"

namespace corvanel::testing {
namespace {

using namespace std::chrono_literals;

class RateSwitchingScenarioTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(rig.failure(), ""); }

    // Activity lines, with the run's output when one is missing.
    void expectActivity(const std::string& line) {
        EXPECT_TRUE(rig.waitForActivity(line)) << "missing \"" << line << "\" in:\n"
                                               << rig.appOutput();
    }

    LinuxSessionRig rig;
};

TEST_F(RateSwitchingScenarioTest, EachTrackChangeIsDetectedAndPipeWireRunsTheSinkAtItsRate) {
    const std::string sink = PipeWireTestSession::firstSink;
    rig.startPlayer();
    rig.startApp(30);
    // The player is found a moment after the start, or already at it.
    EXPECT_TRUE(rig.waitForActivity("Now watching Corvanel Test Player track changes") ||
                rig.waitForActivity("Started \u2014 watching Corvanel Test Player track changes"))
        << rig.appOutput();

    rig.play(rig.hiResTrack());
    expectActivity("Detected 96 kHz / 24-bit (FLAC audio file)");
    expectActivity("Test DAC A \u2192 96 kHz");
    EXPECT_TRUE(rig.session().waitForSinkRate(sink, 96000));

    // A new track is announced by its metadata alone: the player keeps playing.
    rig.play(rig.mp3Track());
    expectActivity("Detected 44.1 kHz / 256 kbps (MPEG audio file)");
    expectActivity("Test DAC A \u2192 44.1 kHz");
    EXPECT_TRUE(rig.session().waitForSinkRate(sink, 44100));

    rig.play(rig.cdTrack());
    expectActivity("Detected 44.1 kHz / 16-bit (WAV audio file)");
    // Same rate: nothing to switch, and nothing pretends otherwise.
    QTest::qWait(1500);
    const std::vector<std::string> lines = rig.activity();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Test DAC A \u2192 44.1 kHz"), 1)
        << rig.appOutput();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) {
                                return line.find("Apple Music") != std::string::npos;
                            }),
              0);
}

TEST_F(RateSwitchingScenarioTest, WithPausingOnThePlayerPausesBeforeTheSwitchAndRestartsAfter) {
    rig.startPlayer();
    rig.play(rig.cdTrack());
    rig.startApp(30, "\"pauseDuringSwitch\": true");
    expectActivity("Test DAC A \u2192 44.1 kHz");
    ASSERT_TRUE(rig.session().waitForSinkRate(PipeWireTestSession::firstSink, 44100));

    // Watch the default sink's rate from outside, through a PipeWire connection of the test's
    // own, while the next track starts; every reading is stamped on the player journal's clock.
    auto executor = std::make_shared<QtMainExecutor>();
    auto connected = connectPipeWireOutput(executor);
    ASSERT_TRUE(std::holds_alternative<PipeWireOutput>(connected));
    const std::shared_ptr<AudioHardware> graph = std::get<PipeWireOutput>(connected).audio;
    const auto sinkRate = [&graph] {
        const auto device = readPropertyValue<AudioObjectID>(
            *graph, kAudioObjectSystemObject,
            globalAddress(kAudioHardwarePropertyDefaultOutputDevice));
        if (!device) return 0.0;
        return readPropertyValue<double>(*graph, *device,
                                         globalAddress(kAudioDevicePropertyNominalSampleRate))
            .value_or(0.0);
    };
    std::vector<std::pair<double, double>> rates;
    const double opened = monotonicSeconds();
    rig.play(rig.hiResTrack());
    while (monotonicSeconds() < opened + 3.0) {
        const double at = monotonicSeconds();
        rates.emplace_back(at, sinkRate());
        QTest::qWait(2);
    }

    // The journal's calls after the new track: Pause, (state and position reads), then Play at
    // the start of the track.
    double pause = 0;
    double play = 0;
    std::string playLine;
    for (const std::string& line : rig.playerJournal()) {
        const double at = std::stod(line);
        if (at < opened) continue;
        if (pause == 0 && line.find(" Pause |") != std::string::npos) pause = at;
        if (pause != 0 && play == 0 && line.find(" Play |") != std::string::npos) {
            play = at;
            playLine = line;
        }
    }
    ASSERT_GT(pause, 0) << "no Pause reached the player:\n" << rig.appOutput();
    ASSERT_GT(play, pause) << "no Play after the Pause";
    EXPECT_NE(playLine.find("position=0.0"), std::string::npos) << playLine;

    // The rate changed after the Pause arrived and before Play: the sink still ran the old rate
    // after the Pause, and the new one before Play.
    const auto firstNew = std::find_if(rates.begin(), rates.end(),
                                       [](const auto& sample) { return sample.second == 96000; });
    ASSERT_NE(firstNew, rates.end()) << "the sink never ran at 96 kHz";
    EXPECT_LT(firstNew->first, play);
    const bool oldAfterPause = std::any_of(rates.begin(), firstNew, [&](const auto& sample) {
        return sample.first > pause && sample.second == 44100;
    });
    EXPECT_TRUE(oldAfterPause) << "the rate changed before the player was paused";
    EXPECT_TRUE(rig.session().waitForSinkRate(PipeWireTestSession::firstSink, 96000));
}

TEST_F(RateSwitchingScenarioTest, ANewDefaultSinkAndARateForcedElsewhereAreFollowed) {
    rig.startPlayer();
    rig.startApp(30);
    rig.play(rig.hiResTrack());
    expectActivity("Test DAC A \u2192 96 kHz");

    ASSERT_TRUE(rig.session().setDefaultSink(PipeWireTestSession::secondSink));
    expectActivity("Output device now Test DAC B");

    // Another program moves the graph to 48 kHz. Corvanel picks that up quietly; the next
    // 96 kHz track shows it did, by switching again.
    ASSERT_TRUE(rig.session().forceRateAsAnotherProgram(48000));
    ASSERT_TRUE(rig.session().waitForSinkRate(PipeWireTestSession::secondSink, 48000) ||
                rig.session().forcedRate() == 48000);
    QTest::qWait(300);
    rig.play(rig.mp3Track());
    expectActivity("Test DAC B \u2192 44.1 kHz");
    EXPECT_TRUE(rig.session().waitForSinkRate(PipeWireTestSession::secondSink, 44100));
}

TEST_F(RateSwitchingScenarioTest, QuittingGivesBackTheRateTheGraphHadBefore) {
    ASSERT_EQ(rig.session().forcedRate(), 0);
    rig.startPlayer();
    rig.startApp(4);
    rig.play(rig.hiResTrack());
    expectActivity("Test DAC A \u2192 96 kHz");
    ASSERT_EQ(rig.session().forcedRate(), 96000);
    EXPECT_EQ(rig.waitForAppExit(10s), 0) << rig.appOutput();
    EXPECT_EQ(rig.session().forcedRate(), 0) << "the graph is still forced after Corvanel quit";
}

}  // namespace
}  // namespace corvanel::testing
