// The engine's construction, settings, login item and activity log.
#include <gtest/gtest.h>

#include "ScriptedFollowedPlayer.h"
#include "SimulatedMac.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

using testing::activityTexts;
using testing::SimulatedMac;

class SwitcherEngineStateTest : public ::testing::Test {
  protected:
    std::shared_ptr<SwitcherEngine> start() {
        auto engine = SwitcherEngine::create(mac.ports());
        connection = engine->changed.connect([this] { ++notifications; });
        return engine;
    }

    SimulatedMac mac;
    Connection connection;
    int notifications = 0;
};

TEST_F(SwitcherEngineStateTest, FirstStartReadsTheDeviceAndLogsTheStartAboveTheDepthLine) {
    const AudioObjectID speakers = mac.addDevice("Speakers", 48000, {44100, 48000, 96000});
    mac.audio->setDefaultOutputDevice(speakers);
    mac.music->setRunning(false);
    const auto engine = start();

    EXPECT_TRUE(engine->autoSwitchEnabled());
    EXPECT_FALSE(engine->pauseDuringSwitch());
    EXPECT_FALSE(engine->launchAtLogin());
    EXPECT_TRUE(mac.settings->writes().empty());
    EXPECT_EQ(engine->deviceID(), speakers);
    EXPECT_EQ(engine->deviceName(), "Speakers");
    EXPECT_EQ(engine->deviceRate(), 48000);
    EXPECT_EQ(engine->supportedRates(), (std::vector<double>{44100, 48000, 96000}));
    EXPECT_EQ(engine->deviceBitDepth(), 24u);
    EXPECT_EQ(engine->activity(), (std::vector<std::string>{
                                      "00:00:00  Started \u2014 watching Apple Music track changes",
                                      "00:00:00  Speakers output depth \u2192 24-bit (max)"}));
    EXPECT_EQ(engine->deviceText(), "48 kHz \u00B7 24-bit");
    EXPECT_EQ(engine->detectedText(), "\u2014");
    EXPECT_EQ(engine->menuBarTitle(), "48 kHz");

    EXPECT_EQ(mac.audio->listenerCount(speakers, kAudioDevicePropertyNominalSampleRate), 1u);
    EXPECT_EQ(mac.audio->listenerCount(kAudioObjectSystemObject,
                                       kAudioHardwarePropertyDefaultOutputDevice),
              1u);
    EXPECT_EQ(mac.notifications->observerCount("com.apple.Music.playerInfo"), 1u);
    EXPECT_EQ(mac.notifications->observerCount("com.apple.iTunes.playerInfo"), 1u);
}

TEST_F(SwitcherEngineStateTest, StartUpScanIsSpawnedNotAwaitedAndReadsThirtyMinutes) {
    const AudioObjectID speakers = mac.addDevice("Speakers", 48000, {44100, 48000});
    mac.audio->setDefaultOutputDevice(speakers);
    mac.music->setRunning(false);
    // A track that played twenty minutes before the start; the log ends now.
    mac.executor->advanceBy(Seconds{1200});
    mac.log->add("Music", "Creating AudioQueue with sampleRate:44100.0, channels:2",
                 mac.secondsIn(-1199));
    const auto engine = start();
    EXPECT_FALSE(engine->detection());
    EXPECT_EQ(mac.log->enumerationCount(), 0u);

    mac.executor->runUntilIdle();
    ASSERT_TRUE(engine->detection());
    EXPECT_EQ(engine->detection()->sampleRate, 44100);
    EXPECT_EQ(engine->detection()->source, "AudioQueue");
    EXPECT_EQ(mac.audio->nominalRate(speakers), 44100);
}

TEST_F(SwitcherEngineStateTest, StoredSettingsOfTheWrongTypeReadAsTheDefaults) {
    mac.settings->preset("autoSwitchEnabled", std::string("yes"));
    mac.settings->preset("pauseDuringSwitch", std::int64_t{1});
    EXPECT_TRUE(start()->autoSwitchEnabled());
    EXPECT_FALSE(start()->pauseDuringSwitch());

    mac.settings->preset("autoSwitchEnabled", OtherSettingValue{});
    mac.settings->preset("pauseDuringSwitch", OtherSettingValue{});
    EXPECT_TRUE(start()->autoSwitchEnabled());
    EXPECT_FALSE(start()->pauseDuringSwitch());

    mac.settings->preset("autoSwitchEnabled", false);
    mac.settings->preset("pauseDuringSwitch", true);
    const auto engine = start();
    EXPECT_FALSE(engine->autoSwitchEnabled());
    EXPECT_TRUE(engine->pauseDuringSwitch());
    EXPECT_TRUE(mac.settings->writes().empty());
}

TEST_F(SwitcherEngineStateTest, EveryAssignmentIsStoredButOnlyChangesNotify) {
    const auto engine = start();
    mac.executor->runUntilIdle();
    notifications = 0;

    engine->setPauseDuringSwitch(false);
    EXPECT_EQ(notifications, 0);
    engine->setPauseDuringSwitch(true);
    EXPECT_EQ(notifications, 1);
    engine->setAutoSwitchEnabled(true);
    EXPECT_EQ(notifications, 1);
    engine->setAutoSwitchEnabled(false);
    EXPECT_EQ(notifications, 2);

    using Write = std::pair<std::string, StoredSettingValue>;
    EXPECT_EQ(mac.settings->writes(), (std::vector<Write>{{"pauseDuringSwitch", false},
                                                          {"pauseDuringSwitch", true},
                                                          {"autoSwitchEnabled", true},
                                                          {"autoSwitchEnabled", false}}));
    EXPECT_EQ(mac.settings->read("pauseDuringSwitch"), SettingValue{true});
}

TEST_F(SwitcherEngineStateTest, LaunchAtLoginFollowsTheLoginItemAndKeepsAFailedAssignment) {
    mac.loginItems->setStatus(LoginItemStatus::enabled);
    const auto engine = start();
    EXPECT_TRUE(engine->launchAtLogin());

    engine->setLaunchAtLogin(false);
    EXPECT_FALSE(engine->launchAtLogin());
    EXPECT_EQ(mac.loginItems->status(), LoginItemStatus::notRegistered);

    mac.loginItems->failWith("Operation not permitted");
    engine->setLaunchAtLogin(true);
    EXPECT_TRUE(engine->launchAtLogin());
    EXPECT_EQ(mac.loginItems->status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(engine->activity().front(),
              "00:00:00  Login item change failed: Operation not permitted");
    EXPECT_EQ(mac.loginItems->calls(), (std::vector<std::string>{"unregister", "register"}));

    mac.loginItems->setStatus(LoginItemStatus::requiresApproval);
    EXPECT_FALSE(start()->launchAtLogin());
}

TEST_F(SwitcherEngineStateTest, ActivityLogKeepsTheTwentyNewestLinesNewestFirst) {
    const auto engine = start();
    mac.executor->runUntilIdle();
    for (int line = 1; line <= 25; ++line) {
        mac.executor->advanceBy(Seconds{1});
        mac.loginItems->failWith("reason " + std::to_string(line));
        engine->setLaunchAtLogin(line % 2 == 0);
    }
    ASSERT_EQ(engine->activity().size(), 20u);
    EXPECT_EQ(engine->activity().front(), "00:00:25  Login item change failed: reason 25");
    EXPECT_EQ(engine->activity().back(), "00:00:06  Login item change failed: reason 6");
    for (std::size_t index = 0; index < 20; ++index) {
        EXPECT_EQ(testing::withoutTime(engine->activity()[index]),
                  "Login item change failed: reason " + std::to_string(25 - index));
    }
}

TEST_F(SwitcherEngineStateTest, WithoutAnyOutputDeviceTheEngineStartsEmpty) {
    const auto engine = start();
    EXPECT_FALSE(engine->deviceID());
    EXPECT_EQ(engine->deviceName(), "No output device");
    EXPECT_EQ(engine->deviceRate(), 0);
    EXPECT_TRUE(engine->supportedRates().empty());
    EXPECT_EQ(engine->menuBarTitle(), "\u2013");
    EXPECT_EQ(engine->deviceText(), "\u2014");
    EXPECT_EQ(activityTexts(engine->activity()),
              std::vector<std::string>{"Started \u2014 watching Apple Music track changes"});
}

// Where players come and go (MPRIS on Linux), the activity names the one followed.
TEST_F(SwitcherEngineStateTest, ActivityNamesTheFollowedPlayerAsPlayersComeAndGo) {
    mac.music->setRunning(false);
    auto player = std::make_shared<testing::ScriptedFollowedPlayer>();
    PlatformPorts ports = mac.ports();
    ports.player = player;

    auto engine = SwitcherEngine::create(ports);
    player->follow("Rhythmbox");
    player->follow(std::nullopt);
    EXPECT_EQ(activityTexts(engine->activity()),
              (std::vector<std::string>{"Waiting for a music player to start",
                                        "Now watching Rhythmbox track changes",
                                        "Started \u2014 waiting for a music player to start"}));

    engine.reset();
    player->follow("Lollypop");  // the engine has gone: nothing to write to, nothing breaks
    engine = SwitcherEngine::create(ports);
    EXPECT_EQ(activityTexts(engine->activity()),
              std::vector<std::string>{"Started \u2014 watching Lollypop track changes"});
}

}  // namespace
}  // namespace corvanel
