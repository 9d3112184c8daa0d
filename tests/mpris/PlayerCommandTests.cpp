// The engine's commands reaching a real player: pause, the rewind loop with its position reads,
// play; and a player that vanishes in the middle of them.
#include <gtest/gtest.h>

#include <chrono>

#include "MprisTestRig.h"
#include "TestAudioFiles.h"
#include "platform/Task.h"
#include "switching/MusicController.h"
#include "switching/NumberText.h"

namespace corvanel::testing {
namespace {

class PlayerCommandTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(rig.failure(), "");
        ASSERT_TRUE(writeToneFile(track, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 4.0));
        rig.start();
    }

    std::optional<double> position() {
        const auto text = rig.script(MusicScripts::readPosition);
        if (!text) return std::nullopt;
        return parseDecimal(*text);
    }

    // Where the first journal line from `from` on starting with `call` is, or the journal's
    // length.
    static std::size_t indexOf(const std::vector<std::string>& calls, const std::string& call,
                               std::size_t from = 0) {
        for (std::size_t at = from; at < calls.size(); ++at) {
            if (calls[at].rfind(call, 0) == 0) return at;
        }
        return calls.size();
    }

    MprisTestRig rig;
    std::filesystem::path track = rig.directory() / "track.wav";
};

TEST_F(PlayerCommandTest, PauseRewindAndPlayArriveInOrderAndThePositionReadsZero) {
    const TestPlayerProcess player = rig.startPlayer(1, {"--open", track.string(), "--play"});
    // Played for more than a second, so the rewind loop must see the rewind to stop.
    ASSERT_TRUE(waitFor([&] { return position().value_or(0) > 1.2; }));

    EXPECT_EQ(rig.script(MusicScripts::pause), "");
    ASSERT_TRUE(waitFor([&] { return rig.script(MusicScripts::playerState) == "paused"; }));
    const TaskHandle restart =
        spawn(rig.executor, MusicController::restartTrackAndPlay(rig.ports.scripts));
    ASSERT_TRUE(waitFor([&] { return restart.isFinished(); }));

    const std::vector<std::string> calls = MprisTestRig::calls(player);
    const std::size_t pause = indexOf(calls, "Pause |");
    const std::size_t rewind =
        indexOf(calls, "SetPosition /org/corvanel/TestPlayer/track/1 0 |", pause);
    const std::size_t play = indexOf(calls, "Play |", rewind);
    ASSERT_LT(play, calls.size());
    // The player was back at the start when the play arrived.
    EXPECT_NE(calls[play].find("status=Playing position=0.0"), std::string::npos) << calls[play];
    // The loop stopped as soon as a read saw the rewind: at most one rewind more than needed.
    EXPECT_LE(
        std::count_if(calls.begin(), calls.end(),
                      [](const std::string& call) { return call.rfind("SetPosition", 0) == 0; }),
        2);
    EXPECT_LT(position().value_or(99), 1.0);
}

TEST_F(PlayerCommandTest, WithoutATrackIdTheRewindSeeksBackToTheStart) {
    const TestPlayerProcess player = rig.startPlayer(1, {"--open", track.string(), "--play"});
    rig.control(player, "SetMetadata",
                {QString(), QStringLiteral("file:///nowhere.flac"), QStringLiteral("no track id")});
    ASSERT_TRUE(waitFor([&] { return position().value_or(0) > 0.5; }));
    EXPECT_EQ(rig.script(MusicScripts::rewind), "");
    ASSERT_TRUE(waitFor([&] { return position().value_or(99) < 0.3; }));
    EXPECT_LT(indexOf(MprisTestRig::calls(player), "Seek -"), MprisTestRig::calls(player).size());
}

TEST_F(PlayerCommandTest, APlayerVanishingMidRewindLeavesNothingWaiting) {
    const TestPlayerProcess player = rig.startPlayer(1, {"--open", track.string(), "--play"});
    ASSERT_TRUE(waitFor([&] { return position().value_or(0) > 1.2; }));
    rig.control(player, "VanishOn", {QStringLiteral("SetPosition")});

    const auto started = std::chrono::steady_clock::now();
    const TaskHandle restart =
        spawn(rig.executor, MusicController::restartTrackAndPlay(rig.ports.scripts));
    // At most five rewinds 0.15 s apart and ten state polls 0.1 s apart: about 1.8 s.
    ASSERT_TRUE(waitFor([&] { return restart.isFinished(); }, 4000));
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(3));
    ASSERT_TRUE(waitFor([&] { return !rig.ports.players->followed(); }));
    EXPECT_FALSE(rig.ports.scripts->isApplicationRunning(MusicScripts::musicBundleIdentifier));
    EXPECT_FALSE(rig.script(MusicScripts::readPosition));
    EXPECT_FALSE(rig.script(MusicScripts::play));
}

}  // namespace
}  // namespace corvanel::testing
