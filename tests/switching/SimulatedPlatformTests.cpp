// The simulated hardware and player behave like the real ones where other code relies on it:
// listeners arrive later on the main executor, writes are checked and recorded, failures can be
// injected a given number of times, and the player's position moves only while playing.
#include <gtest/gtest.h>

#include "SimulatedMac.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;
using Operation = SimAudioHardware::Operation;

TEST(SimAudioHardware, ListenersRunOnALaterTurnOfTheMainExecutor) {
    testing::SimulatedMac mac;
    const AudioObjectID device = mac.addDevice("Speakers", 44100, {44100, 48000});
    int calls = 0;
    PropertyListenerID id = 0;
    ASSERT_EQ(mac.audio->addPropertyListener(
                  device, {kAudioDevicePropertyNominalSampleRate}, [&calls] { ++calls; }, id),
              kNoErr);
    mac.audio->changeNominalRateExternally(device, 48000);
    EXPECT_EQ(calls, 0);
    mac.executor->runUntilIdle();
    EXPECT_EQ(calls, 1);

    EXPECT_EQ(
        mac.audio->removePropertyListener(device, {kAudioDevicePropertyNominalSampleRate}, id),
        kNoErr);
    mac.audio->changeNominalRateExternally(device, 44100);
    mac.executor->runUntilIdle();
    EXPECT_EQ(calls, 1);
}

TEST(SimAudioHardware, WritesAreCheckedAndEveryAttemptIsRecorded) {
    testing::SimulatedMac mac;
    const AudioObjectID device = mac.addDevice("Speakers", 44100, {44100, 48000});
    const double unsupported = 96000;
    EXPECT_EQ(mac.audio->setPropertyData(device, {kAudioDevicePropertyNominalSampleRate},
                                         sizeof unsupported, &unsupported),
              kAudioDeviceUnsupportedFormatError);
    const double supported = 48000;
    mac.audio->injectFailure(
        {Operation::setData, std::nullopt, std::nullopt, kAudioHardwareIllegalOperationError, 1});
    EXPECT_EQ(mac.audio->setPropertyData(device, {kAudioDevicePropertyNominalSampleRate},
                                         sizeof supported, &supported),
              kAudioHardwareIllegalOperationError);
    EXPECT_EQ(mac.audio->setPropertyData(device, {kAudioDevicePropertyNominalSampleRate},
                                         sizeof supported, &supported),
              kNoErr);
    const auto writes = mac.audio->writes();
    ASSERT_EQ(writes.size(), 3u);
    EXPECT_EQ(writes[0].rate(), 96000);
    EXPECT_EQ(writes[0].status, kAudioDeviceUnsupportedFormatError);
    EXPECT_EQ(writes[1].status, kAudioHardwareIllegalOperationError);
    EXPECT_EQ(writes[2].status, kNoErr);
    EXPECT_EQ(mac.audio->nominalRate(device), 48000);
    // The stream followed the rate and kept its bits.
    const auto format = mac.audio->physicalFormat(mac.audio->streams(device)[0]);
    EXPECT_EQ(format.mSampleRate, 48000);
    EXPECT_EQ(format.mBitsPerChannel, 16u);
}

TEST(SimAudioHardware, UnpluggingTheDefaultDeviceFallsBackToTheNextOne) {
    testing::SimulatedMac mac;
    const AudioObjectID first = mac.addDevice("One", 44100, {44100});
    const AudioObjectID second = mac.addDevice("Two", 48000, {48000});
    mac.audio->setDefaultOutputDevice(first);
    int changes = 0;
    PropertyListenerID id = 0;
    mac.audio->addPropertyListener(
        kAudioObjectSystemObject, {kAudioHardwarePropertyDefaultOutputDevice},
        [&changes] { ++changes; }, id);
    mac.audio->removeDevice(second);
    mac.executor->runUntilIdle();
    EXPECT_EQ(changes, 0);
    mac.audio->removeDevice(first);
    mac.executor->runUntilIdle();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(mac.audio->defaultOutputDevice(), kAudioObjectUnknown);
    std::string name;
    EXPECT_EQ(mac.audio->getPropertyString(first, {kAudioObjectPropertyName}, name),
              kAudioHardwareBadObjectError);
}

TEST(SimMusicApp, PositionMovesOnlyWhilePlayingAndAScriptLaunchesTheClosedApp) {
    testing::SimulatedMac mac;
    mac.music->setPlayerState("playing");
    mac.music->setPosition(10);
    mac.executor->advanceBy(2s);
    EXPECT_EQ(mac.music->runScript(MusicScripts::readPosition), "12.000");
    mac.music->runScript(MusicScripts::pause);
    mac.executor->advanceBy(5s);
    EXPECT_EQ(mac.music->runScript(MusicScripts::readPosition), "12.000");
    EXPECT_EQ(mac.music->runScript(MusicScripts::playerState), "paused");
    EXPECT_EQ(mac.music->runScript("tell application \"Music\" to quit"), std::nullopt);
    mac.music->setRunning(false);
    EXPECT_FALSE(mac.music->isApplicationRunning(MusicScripts::musicBundleIdentifier));
    EXPECT_EQ(mac.music->runScript(MusicScripts::playerState), "stopped");
    EXPECT_TRUE(mac.music->isApplicationRunning(MusicScripts::musicBundleIdentifier));
    EXPECT_EQ(mac.music->receivedScripts().size(), 6u);
}

}  // namespace
}  // namespace corvanel
