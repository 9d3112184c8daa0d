// When capture runs: the menu-bar choice and open meter windows make demand, the choice is
// stored, a failed start shows its message until a later start succeeds, and device changes
// lead to one debounced rebuild.
#include <gtest/gtest.h>

#include <algorithm>

#include "SpectrumTestWorld.h"

namespace corvanel {
namespace {

using testing::SpectrumTestWorld;
using Op = SimTapOperation;

int countOf(const SimProcessTapHost& host, Op operation) {
    int count = 0;
    for (const SimTapCall& call : host.calls())
        count += call.operation == operation ? 1 : 0;
    return count;
}

bool allZero(const std::vector<float>& values) {
    return std::all_of(values.begin(), values.end(), [](float v) { return v == 0.0f; });
}

class CaptureLifecycleTest : public ::testing::Test {
  protected:
    void menuImageStoredAs(bool enabled) { world.settings->preset("spectrumEnabled", enabled); }
    void playLoudly() {
        world.tone->leftAmplitude = world.tone->rightAmplitude = 0.8f;
        world.deliverAnalysisBlock();
        for (int i = 0; i < 5; ++i)
            world.tick();
    }

    SpectrumTestWorld world;
};

TEST_F(CaptureLifecycleTest, FirstLaunchCapturesUntilTheMenuImageIsSwitchedOff) {
    const auto analyzer = world.makeAnalyzer();
    EXPECT_TRUE(analyzer->menuBarEnabled());
    EXPECT_TRUE(analyzer->isCapturing());
    playLoudly();
    ASSERT_GT(analyzer->levels()[23], 0.5f);
    ASSERT_GT(analyzer->leftLevel(), 0.5f);

    analyzer->setMenuBarEnabled(false);
    EXPECT_FALSE(analyzer->isCapturing());
    EXPECT_TRUE(allZero(analyzer->levels()));
    EXPECT_TRUE(allZero(analyzer->peaks()));
    EXPECT_EQ(analyzer->leftLevel(), 0.0f);
    EXPECT_EQ(analyzer->rightLevel(), 0.0f);
    EXPECT_EQ(world.settings->read("spectrumEnabled"), SettingValue{false});
    world.settle();
    EXPECT_EQ(world.taps->liveObjectCount(), 0u);
    // Nothing ticks any more: the outputs stay at rest.
    world.executor->advanceBy(Seconds{1});
    EXPECT_TRUE(allZero(analyzer->levels()));
    EXPECT_EQ(analyzer->leftLevel(), 0.0f);
}

TEST_F(CaptureLifecycleTest, TheMetersShowWhatIsPlayedNeverTheOutputDevicesMicrophone) {
    // A headset: its microphone hears a loud 187.5 Hz hum while the tap plays 1 kHz on the left.
    auto microphone = std::make_shared<testing::ToneSource>();
    microphone->frequency = 187.5;
    microphone->leftAmplitude = microphone->rightAmplitude = 0.9f;
    world.taps->setDeviceInputs({microphone});
    const auto analyzer = world.makeAnalyzer();
    world.tone->leftAmplitude = 0.8f;
    world.deliverAnalysisBlock();
    for (int i = 0; i < 5; ++i)
        world.tick();
    const std::vector<float>& levels = analyzer->levels();
    // Band 23 (about 1030 Hz) holds the played tone; bands 12 to 15 (160 to 250 Hz) stay dark.
    EXPECT_GT(levels[23], 0.5f);
    EXPECT_LT(*std::max_element(levels.begin() + 12, levels.begin() + 16), 0.05f);
    EXPECT_GT(analyzer->leftLevel(), 0.5f);
    EXPECT_LT(analyzer->rightLevel(), 0.05f);
}

TEST_F(CaptureLifecycleTest, CaptureLostAfterItsStartSaysSoAndComesBackByItself) {
    const auto analyzer = world.makeAnalyzer();
    // The sound server goes away: the running capture stops, and new taps are refused.
    world.taps->failOperation(Op::createProcessTap, 6);
    world.taps->loseCapture(-10);
    world.settle();
    EXPECT_FALSE(analyzer->isCapturing());
    EXPECT_EQ(analyzer->statusMessage(),
              std::optional<std::string>(
                  "Could not keep audio capture running (error -10). Check System Settings ▸ "
                  "Privacy & Security ▸ Screen & System Audio Recording."));

    // Attempts after 1 s, then 2, 4, 8 and 16 s later, each showing why it failed.
    const auto attemptsAfter = [&](double seconds) {
        const int before = countOf(*world.taps, Op::createProcessTap);
        world.executor->advanceBy(Seconds{seconds});
        return countOf(*world.taps, Op::createProcessTap) - before;
    };
    EXPECT_EQ(attemptsAfter(0.99), 0);
    EXPECT_EQ(attemptsAfter(0.01), 1);
    EXPECT_EQ(attemptsAfter(1.99), 0);
    EXPECT_EQ(attemptsAfter(0.01), 1);
    EXPECT_EQ(attemptsAfter(4.0), 1);
    ASSERT_TRUE(analyzer->statusMessage().has_value());
    EXPECT_EQ(analyzer->statusMessage()->rfind("Could not create the audio tap (error 6).", 0), 0u);

    // The wait doubles up to 30 s and stays there.
    EXPECT_EQ(attemptsAfter(8.0), 1);
    EXPECT_EQ(attemptsAfter(16.0), 1);
    EXPECT_EQ(attemptsAfter(29.99), 0);
    EXPECT_EQ(attemptsAfter(0.01), 1);

    // The server is back: the next attempt, 30 s later, captures again and clears the message.
    world.taps->failOperation(Op::createProcessTap, kNoErr);
    EXPECT_EQ(attemptsAfter(30.0), 1);
    EXPECT_TRUE(analyzer->isCapturing());
    EXPECT_FALSE(analyzer->statusMessage().has_value());
    EXPECT_EQ(attemptsAfter(120.0), 0);

    // Lost again while nothing wants capture any more: no attempts at all.
    world.taps->failOperation(Op::createProcessTap, 6);
    world.taps->loseCapture(-10);
    world.settle();
    analyzer->setMenuBarEnabled(false);
    EXPECT_EQ(attemptsAfter(120.0), 0);
}

TEST_F(CaptureLifecycleTest, ALossReportedForAReplacedCaptureChangesNothing) {
    const auto analyzer = world.makeAnalyzer();
    world.taps->loseCapture(-10);
    // Before the report reaches the main thread, capture is stopped and started afresh.
    analyzer->setMenuBarEnabled(false);
    analyzer->setMenuBarEnabled(true);
    world.settle();
    EXPECT_TRUE(analyzer->isCapturing());
    EXPECT_FALSE(analyzer->statusMessage().has_value());
    world.executor->advanceBy(Seconds{60});
    EXPECT_EQ(countOf(*world.taps, Op::createProcessTap), 2);
}

TEST_F(CaptureLifecycleTest, StoredChoiceDecidesCaptureAtCreation) {
    menuImageStoredAs(false);
    auto analyzer = world.makeAnalyzer();
    EXPECT_FALSE(analyzer->menuBarEnabled());
    EXPECT_FALSE(analyzer->isCapturing());
    EXPECT_TRUE(world.taps->calls().empty());

    // A stored value of another type counts as absent: on.
    world.settings->preset("spectrumEnabled", SettingValue{std::string("yes")});
    analyzer = world.makeAnalyzer();
    EXPECT_TRUE(analyzer->menuBarEnabled());
    EXPECT_TRUE(analyzer->isCapturing());
}

TEST_F(CaptureLifecycleTest, MeterWindowsMakeDemandWhileTheMenuImageIsOff) {
    menuImageStoredAs(false);
    const auto analyzer = world.makeAnalyzer();

    analyzer->meterWindowAppeared();  // the panel
    world.settle();
    EXPECT_TRUE(analyzer->isCapturing());
    const auto callsWithOne = world.taps->calls().size();
    analyzer->meterWindowAppeared();  // the candle-light window as well: nothing changes
    world.settle();
    EXPECT_EQ(world.taps->calls().size(), callsWithOne);
    EXPECT_EQ(analyzer->visibleMeterWindows(), 2);

    analyzer->meterWindowDisappeared();
    world.settle();
    EXPECT_TRUE(analyzer->isCapturing());
    analyzer->meterWindowDisappeared();
    EXPECT_FALSE(analyzer->isCapturing());
    world.settle();
    EXPECT_EQ(world.taps->liveObjectCount(), 0u);

    analyzer->meterWindowDisappeared();  // already none: stays at 0
    EXPECT_EQ(analyzer->visibleMeterWindows(), 0);
    analyzer->setVisibleMeterWindows(-3);
    EXPECT_EQ(analyzer->visibleMeterWindows(), 0);
    EXPECT_FALSE(analyzer->isCapturing());
}

TEST_F(CaptureLifecycleTest, TheMenuImageAndWindowsTogether) {
    const auto analyzer = world.makeAnalyzer();
    analyzer->meterWindowAppeared();
    analyzer->setMenuBarEnabled(false);
    EXPECT_TRUE(analyzer->isCapturing());  // the window still shows live audio
    analyzer->meterWindowDisappeared();
    EXPECT_FALSE(analyzer->isCapturing());
    analyzer->setMenuBarEnabled(true);
    world.settle();
    EXPECT_TRUE(analyzer->isCapturing());
}

TEST_F(CaptureLifecycleTest, SettingTheSameChoiceStillStoresItAndReconciles) {
    const auto analyzer = world.makeAnalyzer();
    int stateChanges = 0;
    Connection connection = analyzer->stateChanged.connect([&] { ++stateChanges; });
    world.taps->clearCalls();
    analyzer->setMenuBarEnabled(true);
    analyzer->setMenuBarEnabled(true);
    const auto writes = world.settings->writes();
    ASSERT_EQ(writes.size(), 2u);
    EXPECT_EQ(writes[1], (std::pair<std::string, StoredSettingValue>{"spectrumEnabled", true}));
    EXPECT_TRUE(world.taps->calls().empty());  // already running: nothing rebuilt
    EXPECT_EQ(stateChanges, 0);

    // When the running pipeline is gone, the same assignment starts capture again.
    world.taps->failOperation(Op::createProcessTap, -1);
    analyzer->deviceConfigurationChanged();
    world.executor->advanceBy(Seconds{0.6});
    ASSERT_FALSE(analyzer->isCapturing());
    world.taps->failOperation(Op::createProcessTap, kNoErr);
    analyzer->setMenuBarEnabled(true);
    world.settle();
    EXPECT_TRUE(analyzer->isCapturing());
}

TEST_F(CaptureLifecycleTest, AMissingPermissionShowsUntilAStartSucceeds) {
    menuImageStoredAs(false);
    world.taps->failOperation(Op::createProcessTap, -1);
    const auto analyzer = world.makeAnalyzer();
    int stateChanges = 0;
    Connection connection = analyzer->stateChanged.connect([&] { ++stateChanges; });

    analyzer->meterWindowAppeared();
    world.settle();
    const std::string expected =
        "Could not create the audio tap (error -1). Check System Settings ▸ Privacy & Security "
        "▸ Screen & System Audio Recording.";
    EXPECT_EQ(analyzer->statusMessage(), expected);
    EXPECT_FALSE(analyzer->isCapturing());
    EXPECT_EQ(stateChanges, 1);
    // The loop runs on after a failed start.
    int published = 0;
    Connection values = analyzer->valuesChanged.connect([&] { ++published; });
    world.executor->advanceBy(Seconds{0.33});
    EXPECT_EQ(published, 10);

    // Not retried by itself; the next window tries again (and fails again).
    analyzer->meterWindowAppeared();
    world.settle();
    EXPECT_EQ(analyzer->statusMessage(), expected);
    EXPECT_EQ(countOf(*world.taps, Op::createProcessTap), 2);

    world.taps->failOperation(Op::createProcessTap, kNoErr);
    analyzer->setMenuBarEnabled(true);
    world.settle();
    EXPECT_FALSE(analyzer->statusMessage().has_value());
    EXPECT_TRUE(analyzer->isCapturing());
}

TEST_F(CaptureLifecycleTest, StoppingClearsTheMessage) {
    world.taps->failOperation(Op::readTapUID, 7);
    const auto analyzer = world.makeAnalyzer();
    EXPECT_TRUE(analyzer->statusMessage().has_value());
    analyzer->setMenuBarEnabled(false);
    EXPECT_FALSE(analyzer->statusMessage().has_value());
    world.settle();
    EXPECT_EQ(world.taps->liveObjectCount(), 0u);
}

TEST_F(CaptureLifecycleTest, ABurstOfDeviceChangesLeadsToOneRebuildAfterTheLast) {
    const auto analyzer = world.makeAnalyzer();
    world.taps->clearCalls();
    for (int i = 0; i < 3; ++i) {
        analyzer->deviceConfigurationChanged();
        world.executor->advanceBy(Seconds{0.2});
    }
    // 0.6 s after the first and 0.4 s after the second: the old pipeline still runs.
    EXPECT_EQ(countOf(*world.taps, Op::destroyProcessTap), 0);
    EXPECT_TRUE(analyzer->isCapturing());
    world.executor->advanceBy(Seconds{0.399});
    EXPECT_EQ(countOf(*world.taps, Op::destroyProcessTap), 0);
    world.executor->advanceBy(Seconds{0.001});  // 600 ms after the third
    EXPECT_EQ(countOf(*world.taps, Op::destroyProcessTap), 1);
    EXPECT_EQ(countOf(*world.taps, Op::createProcessTap), 1);
    EXPECT_TRUE(analyzer->isCapturing());
    world.executor->advanceBy(Seconds{2});
    EXPECT_EQ(countOf(*world.taps, Op::createProcessTap), 1);
}

TEST_F(CaptureLifecycleTest, TheRebuildPicksUpTheNewDeviceAndRate) {
    const auto analyzer = world.makeAnalyzer();
    const AudioObjectID headphones = world.addOutputDevice("Headphones", "Headphones-UID");
    world.audio->setDefaultOutputDevice(headphones);
    world.taps->setFormat(SimProcessTapHost::floatFormat(96000, 2));
    analyzer->deviceConfigurationChanged();
    world.executor->advanceBy(Seconds{0.6});
    const auto description = world.taps->lastAggregateDescription();
    ASSERT_TRUE(description.has_value());
    EXPECT_EQ(std::get<std::string>(findEntry(*description, "master")->value), "Headphones-UID");
    EXPECT_EQ(analyzer->tapSampleRate(), 96000.0);
    EXPECT_EQ(world.taps->liveObjectCount(), 3u);  // one tap, one device, one callback
}

TEST_F(CaptureLifecycleTest, DeviceChangesWithoutDemandOrAfterItEndsDoNothing) {
    menuImageStoredAs(false);
    const auto analyzer = world.makeAnalyzer();
    analyzer->deviceConfigurationChanged();
    world.executor->advanceBy(Seconds{1});
    EXPECT_TRUE(world.taps->calls().empty());

    analyzer->meterWindowAppeared();
    analyzer->deviceConfigurationChanged();
    world.executor->advanceBy(Seconds{0.3});
    analyzer->meterWindowDisappeared();  // demand ends: the pending rebuild is cancelled
    world.settle();
    world.taps->clearCalls();
    world.executor->advanceBy(Seconds{1});
    EXPECT_TRUE(world.taps->calls().empty());
    EXPECT_FALSE(analyzer->isCapturing());
}

TEST_F(CaptureLifecycleTest, ADeviceChangeWhileFailedTriesAgain) {
    world.audio->setDefaultOutputDevice(0);
    const auto analyzer = world.makeAnalyzer();
    EXPECT_EQ(
        analyzer->statusMessage(),
        std::optional<std::string>("No default output device available for the spectrum tap."));
    world.audio->setDefaultOutputDevice(world.speakers);
    analyzer->deviceConfigurationChanged();
    world.executor->advanceBy(Seconds{0.6});
    EXPECT_TRUE(analyzer->isCapturing());
    EXPECT_FALSE(analyzer->statusMessage().has_value());
}

}  // namespace
}  // namespace corvanel
