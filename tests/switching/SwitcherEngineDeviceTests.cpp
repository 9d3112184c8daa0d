// Device listeners: the default output device and its rate follow the hardware, the rate
// listener moves with the device, and the analyzer hears of every change.
#include <gtest/gtest.h>

#include <algorithm>

#include "SimulatedMac.h"
#include "spectrum/SpectrumTestWorld.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;
using testing::activityTexts;
using testing::SimulatedMac;

class SwitcherEngineDeviceTest : public ::testing::Test {
  protected:
    SwitcherEngineDeviceTest() {
        // The analyzer captures, so a device change shows as a rebuilt tap 0.6 s later.
        mac.settings->preset("spectrumEnabled", true);
        mac.music->setRunning(false);
        deviceA = mac.addDevice("Speakers", 44100, {44100, 48000});
        mac.audio->setDefaultOutputDevice(deviceA);
    }

    std::size_t tapsCreated() const {
        const auto calls = mac.taps->calls();
        return static_cast<std::size_t>(
            std::count_if(calls.begin(), calls.end(), [](const SimTapCall& call) {
                return call.operation == SimTapOperation::createProcessTap && call.status == kNoErr;
            }));
    }

    std::size_t rateListeners(AudioObjectID device) const {
        return mac.audio->listenerCount(device, kAudioDevicePropertyNominalSampleRate);
    }

    // Starts the engine and plays a 96 kHz track on it (switched where the device allows).
    std::shared_ptr<SwitcherEngine> startPlaying96k() {
        auto engine = SwitcherEngine::create(mac.ports());
        mac.log->add("Music", "Creating AudioQueue with sampleRate:96000.0", mac.secondsIn(0));
        mac.executor->runUntilIdle();
        mac.executor->advanceBy(1s);
        return engine;
    }

    SimulatedMac mac;
    AudioObjectID deviceA = 0;
};

TEST_F(SwitcherEngineDeviceTest, ANewDefaultDeviceTakesTheListenerTheLogLineAndTheDetection) {
    const auto engine = startPlaying96k();
    ASSERT_TRUE(engine->detection());
    ASSERT_EQ(engine->deviceRate(), 48000);  // A offers no 96 kHz
    const std::size_t tapsBefore = tapsCreated();
    const AudioObjectID deviceB = mac.addDevice("DAC", 44100, {44100, 48000, 96000}, 32);

    mac.audio->setDefaultOutputDevice(deviceB);
    mac.executor->runUntilIdle();
    EXPECT_EQ(rateListeners(deviceA), 0u);
    EXPECT_EQ(rateListeners(deviceB), 1u);
    EXPECT_EQ(engine->deviceID(), deviceB);
    EXPECT_EQ(engine->deviceName(), "DAC");
    EXPECT_EQ(engine->supportedRates(), (std::vector<double>{44100, 48000, 96000}));
    const std::vector<std::string> texts = activityTexts(engine->activity());
    EXPECT_EQ(std::vector<std::string>(texts.begin(), texts.begin() + 4),
              (std::vector<std::string>{"DAC \u2192 96 kHz", "Output device now DAC",
                                        "DAC output depth \u2192 32-bit (max)",
                                        "Speakers \u2192 48 kHz"}));
    EXPECT_EQ(mac.audio->nominalRate(deviceB), 96000);

    mac.executor->advanceBy(0.6s);
    EXPECT_EQ(tapsCreated(), tapsBefore + 1);
}

TEST_F(SwitcherEngineDeviceTest, UnpluggingTheLastDeviceLeavesNoDeviceAndNoListener) {
    const auto engine = startPlaying96k();
    const std::size_t writes = mac.audio->writes().size();
    mac.audio->removeDevice(deviceA);
    mac.executor->runUntilIdle();

    EXPECT_FALSE(engine->deviceID());
    EXPECT_EQ(engine->deviceName(), "No output device");
    EXPECT_EQ(engine->deviceRate(), 0);
    EXPECT_TRUE(engine->supportedRates().empty());
    EXPECT_EQ(activityTexts(engine->activity())[0], "Output device now No output device");
    EXPECT_EQ(engine->menuBarTitle(), "\u2013");
    EXPECT_EQ(mac.audio->writes().size(), writes);
}

TEST_F(SwitcherEngineDeviceTest, ARateSetByAnotherProgramIsFollowedSilently) {
    const auto engine = SwitcherEngine::create(mac.ports());
    mac.executor->advanceBy(1s);
    const std::size_t tapsBefore = tapsCreated();
    const std::vector<std::string> activity = engine->activity();

    // The driver drops to 16 bits at the new rate; the engine raises it back.
    const AudioObjectID stream = mac.audio->streams(deviceA)[0];
    mac.audio->changeNominalRateExternally(deviceA, 48000);
    mac.audio->setPhysicalFormat(stream, SimAudioHardware::linearPCM(48000, 16).mFormat);
    mac.executor->runUntilIdle();
    EXPECT_EQ(engine->deviceRate(), 48000);
    EXPECT_EQ(engine->deviceBitDepth(), 24u);
    EXPECT_EQ(mac.audio->physicalFormat(stream).mBitsPerChannel, 24u);
    EXPECT_EQ(mac.audio->physicalFormat(stream).mSampleRate, 48000);
    EXPECT_EQ(engine->activity(), activity);
    mac.executor->advanceBy(0.6s);
    EXPECT_EQ(tapsCreated(), tapsBefore + 1);

    // Half a hertz or less is no change: no depth adjustment, no rebuild.
    const std::size_t writes = mac.audio->writes().size();
    mac.audio->changeNominalRateExternally(deviceA, 48000.5);
    mac.executor->advanceBy(1s);
    EXPECT_EQ(engine->deviceRate(), 48000);
    EXPECT_EQ(mac.audio->writes().size(), writes);
    EXPECT_EQ(tapsCreated(), tapsBefore + 1);
}

TEST_F(SwitcherEngineDeviceTest, TheMetersFrequencyAxisFollowsTheEnginesOwnSwitch) {
    // A 1 kHz tone plays through a DAC at 44.1 kHz; the tap runs at the DAC's rate.
    auto tone = std::make_shared<testing::ToneSource>(44100);
    tone->frequency = 1000;
    tone->leftAmplitude = tone->rightAmplitude = 0.8f;
    mac.taps = std::make_shared<SimProcessTapHost>(tone, SimProcessTapHost::Pacing::manual);
    mac.taps->followDeviceRate(mac.audio);
    const AudioObjectID dac = mac.addDevice("DAC", 44100, {44100, 48000, 96000});
    mac.audio->setDefaultOutputDevice(dac);
    const auto engine = SwitcherEngine::create(mac.ports());
    mac.executor->runUntilIdle();
    const auto loudestBand = [&] {
        for (int block = 0; block < 8; ++block)
            mac.taps->deliverBlock();
        mac.executor->advanceBy(0.2s);
        const std::vector<float>& levels = engine->spectrum()->levels();
        return std::max_element(levels.begin(), levels.end()) - levels.begin();
    };
    // 20 * 800^(23/39), about 1030 Hz, is the band centre nearest 1 kHz.
    EXPECT_EQ(loudestBand(), 23);

    // A 96 kHz track: the engine switches the DAC itself, the player follows.
    mac.log->add("Music", "Creating AudioQueue with sampleRate:96000.0", mac.secondsIn(0));
    mac.postPlayerState("Playing");
    mac.executor->advanceBy(2s);
    ASSERT_EQ(mac.audio->nominalRate(dac), 96000);
    tone->setSampleRate(96000);
    EXPECT_EQ(engine->spectrum()->tapSampleRate(), 96000);
    EXPECT_EQ(loudestBand(), 23);

    // Once the capture runs at the device's rate, a late confirmation of it changes nothing.
    const std::size_t tapsBefore = tapsCreated();
    mac.audio->changeNominalRateExternally(dac, 96000);
    mac.executor->advanceBy(1s);
    EXPECT_EQ(tapsCreated(), tapsBefore);
}

TEST_F(SwitcherEngineDeviceTest, FailedDeviceReadsFallBackToUnknownValues) {
    mac.audio->injectFailure({SimAudioHardware::Operation::getData, deviceA,
                              kAudioDevicePropertyNominalSampleRate,
                              kAudioHardwareUnknownPropertyError, std::nullopt});
    mac.audio->injectFailure({SimAudioHardware::Operation::getString, deviceA,
                              kAudioObjectPropertyName, kAudioHardwareUnknownPropertyError,
                              std::nullopt});
    const auto engine = SwitcherEngine::create(mac.ports());
    EXPECT_EQ(engine->deviceID(), deviceA);
    EXPECT_EQ(engine->deviceName(), "Unknown device");
    EXPECT_EQ(engine->deviceRate(), 0);
    EXPECT_EQ(engine->deviceBitDepth(), 0u);
    EXPECT_EQ(rateListeners(deviceA), 1u);

    // The default-device read fails: no device, until the next change tries again.
    mac.audio->injectFailure({SimAudioHardware::Operation::getData, kAudioObjectSystemObject,
                              kAudioHardwarePropertyDefaultOutputDevice,
                              kAudioHardwareIllegalOperationError, std::nullopt});
    const auto second = SwitcherEngine::create(mac.ports());
    EXPECT_FALSE(second->deviceID());
    mac.audio->clearFailures();
    const AudioObjectID other = mac.addDevice("Headphones", 48000, {48000});
    mac.audio->setDefaultOutputDevice(other);
    mac.executor->runUntilIdle();
    EXPECT_EQ(second->deviceID(), other);
    EXPECT_EQ(second->deviceName(), "Headphones");
}

TEST_F(SwitcherEngineDeviceTest, ListenerCallbacksAfterTheEngineIsGoneDoNothing) {
    auto engine = SwitcherEngine::create(mac.ports());
    mac.executor->runUntilIdle();
    const std::weak_ptr<SwitcherEngine> weak = engine;
    engine.reset();
    EXPECT_TRUE(weak.expired());
    mac.audio->changeNominalRateExternally(deviceA, 48000);
    mac.audio->setDefaultOutputDevice(mac.addDevice("DAC", 44100, {44100}));
    mac.executor->advanceBy(1s);
    EXPECT_TRUE(mac.rateWrites().empty());
}

}  // namespace
}  // namespace corvanel
