// Following real players on a private session bus: which player is followed, the "playerInfo"
// notifications a track change sends (players announce a new track with Metadata alone), and the
// followed player's name.
#include <gtest/gtest.h>

#include "MprisTestRig.h"
#include "TestAudioFiles.h"

namespace corvanel::testing {
namespace {

// The "Player State" texts of the notifications received so far.
struct NotificationLog {
    std::vector<std::string> states;

    void observe(PlayerNotifications& notifications) {
        notifications.addObserver("com.apple.Music.playerInfo",
                                  [this](const std::optional<UserInfo>& info) {
                                      const auto state = info->find("Player State");
                                      states.push_back(std::get<std::string>(state->second));
                                  });
    }
    std::size_t count(const std::string& state) const {
        return static_cast<std::size_t>(std::count(states.begin(), states.end(), state));
    }
};

class PlayerTrackingTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(rig.failure(), "");
        ASSERT_TRUE(writeToneFile(first, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100));
        ASSERT_TRUE(writeToneFile(second, SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 96000));
    }

    MprisTestRig rig;
    std::filesystem::path first = rig.directory() / "first.wav";
    std::filesystem::path second = rig.directory() / "second.flac";
};

TEST_F(PlayerTrackingTest, EveryStartOfATrackIsAnnouncedAsPlaying) {
    rig.start();
    NotificationLog log;
    log.observe(*rig.ports.notifications);
    const TestPlayerProcess player = rig.startPlayer(1, {"--open", first.string(), "--play"});
    ASSERT_TRUE(waitFor([&] { return log.count("Playing") == 1; })) << log.states.size();
    EXPECT_EQ(rig.ports.players->followedIdentity(), "Corvanel Test Player");

    // A new track while playing: the player sends Metadata only, and that is a start.
    rig.open(player, second);
    ASSERT_TRUE(waitFor([&] { return log.count("Playing") == 2; }));
    EXPECT_NE(MprisTestRig::calls(player).back().find("| status=Playing"), std::string::npos);

    rig.playerCall(player, "Pause");
    ASSERT_TRUE(waitFor([&] { return log.count("Paused") == 1; }));
    EXPECT_EQ(rig.script(MusicScripts::playerState), "paused");
    // A new track while paused starts nothing; playing it does.
    rig.open(player, first);
    rig.playerCall(player, "Play");
    ASSERT_TRUE(waitFor([&] { return log.count("Playing") == 3; }));
    EXPECT_EQ(rig.script(MusicScripts::playerState), "playing");
    rig.playerCall(player, "Stop");
    ASSERT_TRUE(waitFor([&] { return log.count("Stopped") == 1; }));
    EXPECT_EQ(rig.script(MusicScripts::playerState), "stopped");
    EXPECT_EQ(log.states,
              (std::vector<std::string>{"Playing", "Playing", "Paused", "Playing", "Stopped"}));
}

TEST_F(PlayerTrackingTest, TheMostRecentlyStartedPlayerIsFollowed) {
    rig.start();
    int identityChanges = 0;
    const Connection watching =
        rig.ports.players->followedChanged.connect([&identityChanges] { ++identityChanges; });
    EXPECT_FALSE(rig.ports.players->followedIdentity());
    EXPECT_FALSE(rig.ports.scripts->isApplicationRunning(MusicScripts::musicBundleIdentifier));

    const TestPlayerProcess one =
        rig.startPlayer(1, {"--identity", "Player One", "--open", first.string(), "--play"});
    ASSERT_TRUE(waitFor([&] { return rig.ports.players->followedIdentity() == "Player One"; }));
    const TestPlayerProcess two =
        rig.startPlayer(2, {"--identity", "Player Two", "--open", second.string()});
    // Two knows its track but does not play: One stays followed.
    QTest::qWait(200);
    EXPECT_EQ(rig.ports.players->followedIdentity(), "Player One");

    const int changesBefore = identityChanges;
    rig.playerCall(two, "Play");
    ASSERT_TRUE(waitFor([&] { return rig.ports.players->followedIdentity() == "Player Two"; }));
    EXPECT_EQ(identityChanges, changesBefore + 1);
    EXPECT_TRUE(rig.ports.scripts->isApplicationRunning(MusicScripts::musicBundleIdentifier));

    // Two pauses while One still plays: One is the player that is playing.
    rig.playerCall(two, "Pause");
    ASSERT_TRUE(waitFor([&] { return rig.ports.players->followedIdentity() == "Player One"; }));
    // One goes away: Two, paused, is the one left.
    rig.stopPlayer(one);
    ASSERT_TRUE(waitFor([&] { return rig.ports.players->followedIdentity() == "Player Two"; }));
    EXPECT_EQ(rig.script(MusicScripts::playerState), "paused");
    // None left: nothing is running and no script is answered.
    rig.stopPlayer(two);
    ASSERT_TRUE(waitFor([&] { return !rig.ports.players->followedIdentity(); }));
    EXPECT_FALSE(rig.ports.scripts->isApplicationRunning(MusicScripts::musicBundleIdentifier));
    EXPECT_FALSE(rig.script(MusicScripts::playerState));
    EXPECT_FALSE(rig.script(MusicScripts::trackTechnicals));
}

TEST_F(PlayerTrackingTest, PlayersAlreadyOnTheBusAreFoundAtTheStart) {
    const TestPlayerProcess playing =
        rig.startPlayer(3, {"--identity", "Early Player", "--open", second.string(), "--play"});
    rig.start();
    NotificationLog log;
    log.observe(*rig.ports.notifications);
    // Found playing, it is announced as a start, so its track is scanned.
    ASSERT_TRUE(waitFor([&] { return log.count("Playing") == 1; }));
    EXPECT_EQ(rig.ports.players->followedIdentity(), "Early Player");
    EXPECT_EQ(rig.script(MusicScripts::playerState), "playing");
}

}  // namespace
}  // namespace corvanel::testing
