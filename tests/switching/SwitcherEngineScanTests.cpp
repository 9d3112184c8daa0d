// Track-change scanning: the player's notifications, the generation rule, the merge of the log
// with the app's report, the duplicate test and scan failures.
#include <gtest/gtest.h>

#include "SimulatedMac.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;
using testing::activityTexts;
using testing::SimulatedMac;

// Records when each log scan ran (virtual seconds) and how far back it read.
class RecordingLog final : public SystemLog {
  public:
    RecordingLog(std::shared_ptr<SystemLog> inner, std::shared_ptr<VirtualTimeExecutor> executor)
        : inner_(std::move(inner)), executor_(std::move(executor)) {}

    std::optional<std::string> enumerate(const std::string& process, double secondsBack,
                                         const EntryVisitor& visit) override {
        scans.emplace_back(executor_->elapsed().count(), secondsBack);
        return inner_->enumerate(process, secondsBack, visit);
    }

    std::vector<std::pair<double, double>> scans;

  private:
    std::shared_ptr<SystemLog> inner_;
    std::shared_ptr<VirtualTimeExecutor> executor_;
};

constexpr const char* losslessMessage =
    "ACAppleLosslessDecoder::Init: Input format: 2 ch, 96000 Hz, from 24-bit source";

class SwitcherEngineScanTest : public ::testing::Test {
  protected:
    SwitcherEngineScanTest() {
        speakers = mac.addDevice("Speakers", 48000, {44100, 48000, 88200, 96000});
        mac.audio->setDefaultOutputDevice(speakers);
    }

    std::shared_ptr<SwitcherEngine> start() {
        PlatformPorts ports = mac.ports();
        ports.systemLog = recorder;
        auto engine = SwitcherEngine::create(ports);
        mac.executor->runUntilIdle();  // the start-up scan
        recorder->scans.clear();
        mac.journal.clear();
        return engine;
    }

    void playTrack(const std::string& rate, const std::string& bitRate, const std::string& kind) {
        mac.music->setRunning(true);
        mac.music->setTrack(SimMusicApp::Track{rate, bitRate, kind});
        mac.music->setPlayerState("playing");
    }

    SimulatedMac mac;
    std::shared_ptr<RecordingLog> recorder = std::make_shared<RecordingLog>(mac.log, mac.executor);
    AudioObjectID speakers = 0;
};

TEST_F(SwitcherEngineScanTest, ASecondStartOfPlaybackSupersedesTheFirstOnesLaterScans) {
    const auto engine = start();
    mac.postPlayerState("Playing");
    mac.executor->advanceBy(1s);
    mac.postPlayerState("Playing", "com.apple.iTunes.playerInfo");
    mac.executor->advanceBy(10s);

    const std::vector<std::pair<double, double>> expected{
        {0.6, 8.6}, {1.6, 8.6}, {3.5, 10.5}, {6.0, 13.0}};
    ASSERT_EQ(recorder->scans.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        EXPECT_NEAR(recorder->scans[index].first, expected[index].first, 1e-9) << index;
        EXPECT_DOUBLE_EQ(recorder->scans[index].second, expected[index].second) << index;
    }
}

TEST_F(SwitcherEngineScanTest, OnlyTheExactPlayingStateSchedulesScans) {
    const auto engine = start();
    mac.postPlayerState("playing");
    mac.postPlayerState("Paused");
    mac.notifications->post("com.apple.Music.playerInfo");
    mac.notifications->post("com.apple.Music.playerInfo", UserInfo{{"Player State", 1.0}});
    mac.notifications->post("com.apple.Music.playerInfo", UserInfo{{"Name", "Playing"}});
    mac.postPlayerState("Playing", "com.apple.Music.somethingElse");
    mac.executor->advanceBy(10s);
    EXPECT_TRUE(recorder->scans.empty());
}

TEST_F(SwitcherEngineScanTest, TheLogsDepthJoinsTheAppsRateWhenTheyAgree) {
    const auto engine = start();
    playTrack("96000", "1411", "Apple Lossless audio file");
    mac.log->add("Music", losslessMessage, mac.secondsIn(0.3));
    mac.postPlayerState("Playing");
    mac.executor->advanceBy(0.6s);

    ASSERT_TRUE(engine->detection());
    const RateDetection& found = *engine->detection();
    EXPECT_EQ(found.sampleRate, 96000);
    EXPECT_EQ(found.bitDepth, 24);
    EXPECT_EQ(found.bitRateKbps, std::nullopt);
    EXPECT_EQ(found.source, "Apple Lossless audio file");
    EXPECT_EQ(found.rawMessage, "Music track technicals (Apple Lossless audio file)");
    EXPECT_EQ(found.date, mac.secondsIn(-0.3));
    EXPECT_EQ(engine->detectedText(), "96 kHz \u00B7 24-bit");
    EXPECT_EQ(engine->menuBarTitle(), "96 kHz \u00B7 24-bit");
    EXPECT_EQ(activityTexts(engine->activity())[1],
              "Detected 96 kHz / 24-bit (Apple Lossless audio file)");
    EXPECT_EQ(mac.audio->nominalRate(speakers), 96000);
}

TEST_F(SwitcherEngineScanTest, TheAppIsAskedOnlyOnceTheLogHasBeenRead) {
    const auto engine = start();
    mac.executor->setBackgroundDuration(0.5s);
    playTrack("44100", "256", "AAC audio file");
    mac.postPlayerState("Playing");
    mac.executor->advanceBy(0.7s);
    // The log read is still running when the app moves on to the next track.
    EXPECT_TRUE(mac.journal.empty());
    playTrack("96000", "", "Apple Lossless audio file");
    mac.executor->advanceBy(0.4s);
    EXPECT_EQ(mac.journal,
              (std::vector<std::string>{"technicals", "write 96 on " + std::to_string(speakers)}));
    ASSERT_TRUE(engine->detection());
    EXPECT_EQ(engine->detection()->sampleRate, 96000);
    EXPECT_EQ(engine->detection()->source, "Apple Lossless audio file");
}

TEST_F(SwitcherEngineScanTest, MergeLetsTheAppsRateWinAndTakesTheLogsDateAnyway) {
    const WallTime logTime = WallTime{} + 100s;
    const WallTime now = WallTime{} + 200s;
    const RateDetection log48{48000, 24, std::nullopt, "AudioQueue", logTime, "m"};
    const MusicController::TrackTechnicals aac{44100, 256, "AAC audio file"};

    const RateDetection disagreeing = SwitcherEngine::trackDetection(aac, log48, now);
    EXPECT_EQ(disagreeing, (RateDetection{44100, std::nullopt, 256, "AAC audio file", logTime,
                                          "Music track technicals (AAC audio file)"}));

    // Within 1 Hz but without a depth: the app's bit rate stays.
    const RateDetection log44{44100.5, std::nullopt, std::nullopt, "AudioQueue", logTime, "m"};
    EXPECT_EQ(SwitcherEngine::trackDetection(aac, log44, now).bitRateKbps, 256);
    EXPECT_EQ(SwitcherEngine::trackDetection(aac, log44, now).sampleRate, 44100);

    const RateDetection alone = SwitcherEngine::trackDetection(aac, std::nullopt, now);
    EXPECT_EQ(alone.date, now);
    EXPECT_EQ(alone.bitRateKbps, 256);
    EXPECT_FALSE(alone.bitDepth);
}

TEST_F(SwitcherEngineScanTest, TheSameFormatFromAnotherSourceChangesNothing) {
    const auto engine = start();
    mac.music->setRunning(false);
    mac.log->add("Music", losslessMessage, mac.secondsIn(0.1));
    mac.postPlayerState("Playing");
    mac.executor->advanceBy(0.6s);
    ASSERT_TRUE(engine->detection());
    ASSERT_EQ(engine->detection()->source, "Lossless decoder");
    const std::vector<std::string> activity = engine->activity();

    mac.log->add("Music",
                 "audioCapabilities: asbdSampleRate = 96 kHz, sdBitDepth = 24 bit, isLossless",
                 mac.secondsIn(0.5));
    mac.executor->advanceBy(2s);
    EXPECT_EQ(engine->detection()->source, "Lossless decoder");
    EXPECT_EQ(engine->activity(), activity);
}

TEST_F(SwitcherEngineScanTest, ALaterScanThatFindsTheDepthIsLoggedAgainButSwitchesNothing) {
    const auto engine = start();
    playTrack("44100", "256", "Apple Music AAC audio file");
    mac.postPlayerState("Playing");
    mac.executor->advanceBy(0.6s);
    EXPECT_EQ(engine->detectedText(), "44.1 kHz \u00B7 256 kbps");

    mac.log->add("Music", "audioCapabilities: asbdSampleRate = 44.1 kHz, sdBitDepth = 16 bit",
                 mac.secondsIn(1.0));
    mac.executor->advanceBy(2s);
    EXPECT_EQ(engine->detectedText(), "44.1 kHz \u00B7 16-bit");
    const std::vector<std::string> texts = activityTexts(engine->activity());
    EXPECT_EQ(texts[0], "Detected 44.1 kHz / 16-bit (Apple Music AAC audio file)");
    EXPECT_EQ(texts[1], "Speakers \u2192 44.1 kHz");
    EXPECT_EQ(texts[2], "Detected 44.1 kHz / 256 kbps (Apple Music AAC audio file)");
    EXPECT_EQ(mac.rateWrites(), std::vector<std::string>{"44.1 on " + std::to_string(speakers)});
}

TEST_F(SwitcherEngineScanTest, AnUnreadableLogIsReportedOnlyWhenTheAppIsSilentToo) {
    const auto engine = start();
    mac.music->setRunning(false);
    mac.log->failWith("The operation couldn't be completed. (Foundation._GenericObjCError 0.)");
    mac.postPlayerState("Playing");
    mac.executor->advanceBy(10s);
    const std::string message =
        "Could not read the system log (The operation couldn't be completed. "
        "(Foundation._GenericObjCError 0.)). Your account must be an administrator.";
    EXPECT_EQ(engine->lastError(), message);
    EXPECT_EQ(activityTexts(engine->activity()),
              (std::vector<std::string>{"Log scan failed", "Log scan failed", "Log scan failed",
                                        "Started \u2014 watching Apple Music track changes",
                                        "Speakers output depth \u2192 24-bit (max)"}));

    // The app answers: its report is used without a depth and the error goes.
    playTrack("88200", "", "");
    mac.postPlayerState("Playing");
    mac.executor->advanceBy(0.6s);
    EXPECT_EQ(engine->lastError(), std::nullopt);
    ASSERT_TRUE(engine->detection());
    EXPECT_EQ(engine->detection()->source, "Music library");
    EXPECT_EQ(activityTexts(engine->activity())[1], "Detected 88.2 kHz (Music library)");
}

TEST_F(SwitcherEngineScanTest, ALogWithNothingUsableClearsTheErrorAndDetectsNothing) {
    const auto engine = start();
    mac.music->setRunning(false);
    mac.log->failWith("denied");
    spawn(mac.executor, engine->scan(1800));
    mac.executor->runUntilIdle();
    ASSERT_TRUE(engine->lastError());

    mac.log->failWith(std::nullopt);
    mac.log->add("Music", "Some unrelated decoder chatter", mac.secondsIn(-5));
    mac.log->add("Spotify", losslessMessage, mac.secondsIn(-5));
    spawn(mac.executor, engine->scan(1800));
    mac.executor->runUntilIdle();
    EXPECT_FALSE(engine->lastError());
    EXPECT_FALSE(engine->detection());
}

TEST_F(SwitcherEngineScanTest, WithAutoSwitchingOffADetectionIsStoredAndLoggedButNotApplied) {
    const auto engine = start();
    engine->setAutoSwitchEnabled(false);
    playTrack("44100", "256", "AAC audio file");
    mac.postPlayerState("Playing");
    mac.executor->advanceBy(10s);
    ASSERT_TRUE(engine->detection());
    EXPECT_EQ(activityTexts(engine->activity())[0],
              "Detected 44.1 kHz / 256 kbps (AAC audio file)");
    EXPECT_TRUE(mac.rateWrites().empty());
    EXPECT_EQ(engine->deviceRate(), 48000);
}

TEST_F(SwitcherEngineScanTest, ADelayedScanEndsQuietlyWhenTheEngineIsGone) {
    auto engine = start();
    mac.postPlayerState("Playing");
    mac.executor->advanceBy(0.1s);
    const std::weak_ptr<SwitcherEngine> weak = engine;
    engine.reset();
    mac.executor->advanceBy(10s);
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(recorder->scans.empty());
}

}  // namespace
}  // namespace corvanel
