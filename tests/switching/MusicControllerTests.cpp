// The Music app's technicals reply, state polling and the rewind-and-play sequence.
#include <gtest/gtest.h>

#include "SimulatedMac.h"
#include "switching/MusicController.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;
using testing::scriptLabel;
using TrackTechnicals = MusicController::TrackTechnicals;

// A script runner that answers the technicals script with a fixed reply.
class FixedReply final : public ScriptRunner {
  public:
    explicit FixedReply(std::optional<std::string> reply) : reply_(std::move(reply)) {}
    std::optional<std::string> runScript(const std::string&) override { return reply_; }
    bool isApplicationRunning(const std::string& bundle) override {
        return bundle == "com.apple.Music";
    }

  private:
    std::optional<std::string> reply_;
};

std::optional<TrackTechnicals> technicalsFor(std::optional<std::string> reply) {
    FixedReply runner(std::move(reply));
    return MusicController::currentTrackTechnicals(runner);
}

TEST(TrackTechnicalsReply, ReadsRateBitRateAndKind) {
    EXPECT_EQ(technicalsFor("44100|256|AAC audio file"),
              (TrackTechnicals{44100, 256, "AAC audio file"}));
    EXPECT_EQ(technicalsFor("44100.0||"), (TrackTechnicals{44100, std::nullopt, "Music library"}));
    EXPECT_EQ(technicalsFor("96000|1411|Apple Lossless|extra|parts"),
              (TrackTechnicals{96000, 1411, "Apple Lossless"}));
    EXPECT_EQ(technicalsFor("8000|+64|x"), (TrackTechnicals{8000, 64, "x"}));
    EXPECT_EQ(technicalsFor("768000|0|x"), (TrackTechnicals{768000, 0, "x"}));
}

TEST(TrackTechnicalsReply, AStrangeBitRateIsDroppedButTheRestIsUsed) {
    EXPECT_EQ(technicalsFor("44100|320 kbps|MPEG audio file"),
              (TrackTechnicals{44100, std::nullopt, "MPEG audio file"}));
    EXPECT_EQ(technicalsFor("44100|256.0|x")->bitRateKbps, std::nullopt);
    EXPECT_EQ(technicalsFor("44100| 256|x")->bitRateKbps, std::nullopt);
}

TEST(TrackTechnicalsReply, UnusableRepliesGiveNothing) {
    EXPECT_FALSE(technicalsFor(std::nullopt));
    EXPECT_FALSE(technicalsFor(""));
    EXPECT_FALSE(technicalsFor("96000|"));
    EXPECT_FALSE(technicalsFor("7999|256|x"));
    EXPECT_FALSE(technicalsFor("768001|256|x"));
    EXPECT_FALSE(technicalsFor("44.1 kHz|256|x"));
    EXPECT_FALSE(technicalsFor("missing value||"));
    EXPECT_FALSE(technicalsFor("|256|x"));
}

TEST(TrackTechnicalsReply, AskingNeverLaunchesTheApp) {
    testing::SimulatedMac mac;
    mac.music->setRunning(false);
    EXPECT_FALSE(MusicController::currentTrackTechnicals(*mac.music));
    EXPECT_TRUE(mac.music->receivedScripts().empty());

    mac.music->setRunning(true);
    mac.music->setPlayerState("stopped");
    EXPECT_FALSE(MusicController::currentTrackTechnicals(*mac.music));
    mac.music->setPlayerState("playing");
    mac.music->setTrack(SimMusicApp::Track{"96000", "", "Apple Lossless audio file"});
    EXPECT_EQ(MusicController::currentTrackTechnicals(*mac.music),
              (TrackTechnicals{96000, std::nullopt, "Apple Lossless audio file"}));
}

// The real Music app sees only these texts, and the simulated one answers whatever the header
// says: each is pinned here to its own copy, written out independently.
TEST(MusicScriptTexts, AreExactlyTheTextsTheMusicAppUnderstands) {
    EXPECT_STREQ(MusicScripts::playerState,
                 R"(tell application "Music" to get player state as string)");
    EXPECT_STREQ(MusicScripts::pause, R"(tell application "Music" to pause)");
    EXPECT_STREQ(MusicScripts::play, R"(tell application "Music" to play)");
    EXPECT_STREQ(MusicScripts::readPosition, R"(tell application "Music" to get player position)");
    EXPECT_STREQ(MusicScripts::rewind, R"(tell application "Music" to set player position to 0.0)");
    EXPECT_STREQ(MusicScripts::trackTechnicals, R"(tell application "Music"
    if player state is stopped then return ""
    set rateText to ""
    try
        set rateValue to sample rate of current track
        if rateValue is missing value then return ""
        set rateText to rateValue as string
    on error
        return ""
    end try
    set bitRateText to ""
    try
        set bitRateText to (bit rate of current track) as string
    end try
    set kindText to ""
    try
        set kindText to (kind of current track) as string
    end try
    return rateText & "|" & bitRateText & "|" & kindText
end tell)");
    EXPECT_STREQ(MusicScripts::musicBundleIdentifier, "com.apple.Music");
}

class PlayerControlTest : public ::testing::Test {
  protected:
    struct Result {
        std::optional<bool> reached;
    };

    static Task<> awaitInto(std::shared_ptr<ScriptRunner> scripts, std::string state, int attempts,
                            std::shared_ptr<Result> result) {
        result->reached = co_await MusicController::awaitState(scripts, state, attempts);
    }

    std::vector<std::string> labels() const {
        std::vector<std::string> out;
        for (const std::string& script : mac.music->receivedScripts())
            out.push_back(scriptLabel(script));
        return out;
    }

    testing::SimulatedMac mac;
    std::shared_ptr<Result> result = std::make_shared<Result>();
};

TEST_F(PlayerControlTest, AwaitStateReturnsAtTheMatchingPollAfterItsWaits) {
    mac.music->setPlayerState("paused");
    mac.music->answerStateFor(2, "playing");
    spawn(mac.executor, awaitInto(mac.music, "paused", 10, result));
    mac.executor->advanceBy(0.199s);
    EXPECT_FALSE(result->reached);
    mac.executor->advanceBy(0.001s);
    EXPECT_EQ(result->reached, true);
    EXPECT_EQ(labels(), (std::vector<std::string>{"state", "state", "state"}));
}

TEST_F(PlayerControlTest, AwaitStateGivesUpAfterItsAttemptsAndTheLastWait) {
    mac.music->setAnswering(false);
    spawn(mac.executor, awaitInto(mac.music, "paused", 10, result));
    mac.executor->advanceBy(0.99s);
    EXPECT_FALSE(result->reached);
    mac.executor->advanceBy(0.01s);
    EXPECT_EQ(result->reached, false);
    EXPECT_EQ(mac.music->receivedScripts().size(), 10u);

    mac.music->clearReceivedScripts();
    spawn(mac.executor, awaitInto(mac.music, "paused", 0, result));
    mac.executor->runUntilIdle();
    EXPECT_EQ(result->reached, false);
    EXPECT_TRUE(mac.music->receivedScripts().empty());
}

TEST_F(PlayerControlTest, RestartRewindsOnceWhenThePositionConfirmsAtOnce) {
    mac.music->setPlayerState("paused");
    mac.music->setPosition(42);
    spawn(mac.executor, MusicController::restartTrackAndPlay(mac.music));
    mac.executor->advanceBy(2s);
    EXPECT_EQ(labels(),
              (std::vector<std::string>{"rewind", "position", "play", "state", "position"}));
    EXPECT_EQ(mac.music->playerState(), "playing");
}

TEST_F(PlayerControlTest, RestartRetriesTheRewindFiveTimesThenCarriesOn) {
    // A player that never answers: five rewinds 0.15 s apart, then play and ten state polls.
    mac.music->setAnswering(false);
    spawn(mac.executor, MusicController::restartTrackAndPlay(mac.music));
    mac.executor->advanceBy(0.749s);
    EXPECT_EQ(labels().size(), 10u);
    mac.executor->advanceBy(0.001s);
    std::vector<std::string> expected;
    for (int i = 0; i < 5; ++i) {
        expected.emplace_back("rewind");
        expected.emplace_back("position");
    }
    expected.emplace_back("play");
    expected.emplace_back("state");
    EXPECT_EQ(labels(), expected);
    mac.executor->advanceBy(2s);
    EXPECT_EQ(labels().size(), expected.size() + 9 + 1);
    EXPECT_EQ(labels().back(), "position");
}

TEST_F(PlayerControlTest, RestartRewindsAgainWhenPlaybackSlippedPastASecondAndAHalf) {
    // Still playing at 42 s and ignoring the first five rewinds: the loop gives up after its
    // fifth wait, plays, and finds the position far past 1.5 s, so it rewinds once more.
    mac.music->setPlayerState("playing");
    mac.music->setPosition(42);
    mac.music->ignoreRewinds(5);
    spawn(mac.executor, MusicController::restartTrackAndPlay(mac.music));
    mac.executor->advanceBy(3s);
    std::vector<std::string> expected;
    for (int i = 0; i < 5; ++i) {
        expected.emplace_back("rewind");
        expected.emplace_back("position");
    }
    for (const char* label : {"play", "state", "position", "rewind"})
        expected.emplace_back(label);
    EXPECT_EQ(labels(), expected);
    EXPECT_LT(mac.music->position(), 3.0);
}

}  // namespace
}  // namespace corvanel
