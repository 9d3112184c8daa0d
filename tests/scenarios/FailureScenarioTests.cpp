// What a Linux user meets when something is missing or misbehaves: no PipeWire, no player, a
// player that vanishes in the middle of a switch, a player with tracks that cannot be read. Each
// run says what is wrong in its activity, keeps running, ends cleanly and leaves nothing forced.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "LinuxSessionRig.h"

namespace corvanel::testing {
namespace {

using namespace std::chrono_literals;

class FailureScenarioTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(rig.failure(), ""); }

    bool shown(const std::string& line) const {
        const std::vector<std::string> lines = rig.activity();
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }

    LinuxSessionRig rig;
};

TEST_F(FailureScenarioTest, WithoutPipeWireTheRunSaysSoAndStillFollowsThePlayer) {
    const std::filesystem::path elsewhere = rig.directory() / "no-pipewire";
    std::filesystem::create_directories(elsewhere);
    rig.startPlayer();
    rig.play(rig.hiResTrack());
    rig.startApp(
        3, {},
        {"PIPEWIRE_RUNTIME_DIR=" + elsewhere.string(), "XDG_RUNTIME_DIR=" + elsewhere.string()});
    EXPECT_EQ(rig.waitForAppExit(15s), 0) << rig.appOutput();
    EXPECT_TRUE(
        shown("Changing the output rate needs PipeWire (PipeWire is not running); the "
              "meters still work"))
        << rig.appOutput();
    EXPECT_TRUE(shown("Detected 96 kHz / 24-bit (FLAC audio file)")) << rig.appOutput();
    EXPECT_TRUE(
        shown("Sound server output (rate needs PipeWire) does not allow sample rate "
              "changes"))
        << rig.appOutput();
    EXPECT_EQ(rig.session().forcedRate(), 0);
}

TEST_F(FailureScenarioTest, WithoutAPlayerItWaitsQuietly) {
    rig.startApp(2);
    EXPECT_EQ(rig.waitForAppExit(10s), 0) << rig.appOutput();
    const std::vector<std::string> lines = rig.activity();
    EXPECT_EQ(lines.front(), "Started \u2014 waiting for a music player to start")
        << rig.appOutput();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) {
                                return line.starts_with("Detected") ||
                                       line.find("failed") != std::string::npos;
                            }),
              0)
        << rig.appOutput();
}

TEST_F(FailureScenarioTest, APlayerThatVanishesWhenPausedLeavesTheSwitchDoneAndNothingHanging) {
    rig.startPlayer();
    rig.startApp(6, "\"pauseDuringSwitch\": true");
    ASSERT_TRUE(rig.waitForActivity("Now watching Corvanel Test Player track changes") ||
                rig.waitForActivity("Started \u2014 watching Corvanel Test Player track changes"));
    rig.playerControl(QStringLiteral("VanishOn"), {QStringLiteral("Pause")});
    rig.play(rig.hiResTrack());
    EXPECT_TRUE(rig.waitForActivity("Test DAC A \u2192 96 kHz")) << rig.appOutput();
    EXPECT_TRUE(rig.waitForActivity("Waiting for a music player to start")) << rig.appOutput();
    EXPECT_EQ(rig.waitForAppExit(15s), 0) << rig.appOutput();
    EXPECT_EQ(rig.session().forcedRate(), 0);
}

TEST_F(FailureScenarioTest, TracksThatCannotBeReadAreSkippedAndTheNextOneIsFollowed) {
    rig.startPlayer();
    rig.startApp(8);
    const std::filesystem::path notAudio = rig.directory() / "notes.flac";
    std::ofstream(notAudio) << "not a FLAC file\n";
    const QString hugeTitle(1 << 20, QChar(u'\u00e9'));
    for (const QString& url : {QStringLiteral("file:///nonexistent/folder/track.flac"),
                               QString::fromStdString("file://" + notAudio.string()),
                               QStringLiteral("https://example.invalid/stream.mp3"), QString()}) {
        rig.playerControl(QStringLiteral("SetMetadata"),
                          {QStringLiteral("/org/corvanel/odd"), url, hugeTitle});
        rig.playerCall(QStringLiteral("Play"));
        QTest::qWait(700);
    }
    rig.play(rig.hiResTrack());
    EXPECT_TRUE(rig.waitForActivity("Detected 96 kHz / 24-bit (FLAC audio file)"))
        << rig.appOutput();
    EXPECT_EQ(rig.waitForAppExit(20s), 0) << rig.appOutput();
    EXPECT_EQ(rig.session().forcedRate(), 0);
}

}  // namespace
}  // namespace corvanel::testing
