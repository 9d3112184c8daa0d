// A capture start that takes a while (a slow or hung sound server) runs off the main thread:
// meanwhile nothing is started twice, a start that is no longer wanted when it ends is removed
// rather than taken on, and removals and starts reach the tap host one at a time, in order.
#include <gtest/gtest.h>

#include <cstddef>

#include "SpectrumTestWorld.h"

namespace corvanel {
namespace {

using testing::SpectrumTestWorld;
using Op = SimTapOperation;

// What a background job costs on the virtual clock: a server slow to answer.
constexpr Seconds slowStart{2.0};

int countOf(const SimProcessTapHost& host, Op operation) {
    int count = 0;
    for (const SimTapCall& call : host.calls())
        count += call.operation == operation ? 1 : 0;
    return count;
}

// The places in the host's call record where `operation` was called.
std::vector<std::size_t> placesOf(const SimProcessTapHost& host, Op operation) {
    const std::vector<SimTapCall> calls = host.calls();
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (calls[i].operation == operation) places.push_back(i);
    }
    return places;
}

class CaptureStartTest : public ::testing::Test {
  protected:
    void SetUp() override { world.executor->setBackgroundDuration(slowStart); }

    // Just before the start under way ends, then just after.
    void untilJustBeforeTheStartEnds() const { world.executor->advanceBy(slowStart * 0.99); }
    void untilTheStartHasEnded() const { world.executor->advanceBy(slowStart * 0.01); }

    // Two starts: what the first built was removed before the second reached the host, so one
    // capture runs, in one piece.
    void expectOneCaptureAfterAReplacedOne() const {
        const std::vector<std::size_t> starts = placesOf(*world.taps, Op::createProcessTap);
        const std::vector<std::size_t> removals = placesOf(*world.taps, Op::destroyProcessTap);
        ASSERT_EQ(starts.size(), 2u);
        ASSERT_EQ(removals.size(), 1u);
        EXPECT_LT(removals[0], starts[1]);
        EXPECT_EQ(world.taps->liveObjectCount(), 3u);
    }

    SpectrumTestWorld world;
};

TEST_F(CaptureStartTest, AStartUnderWayIsTakenOnWhenItEndsAndNeverStartedTwice) {
    const auto analyzer = world.makeAnalyzer();
    EXPECT_FALSE(analyzer->isCapturing());
    // More demand while the first start is under way changes nothing.
    analyzer->meterWindowAppeared();
    analyzer->setMenuBarEnabled(true);
    untilJustBeforeTheStartEnds();
    EXPECT_FALSE(analyzer->isCapturing());
    EXPECT_TRUE(world.taps->calls().empty());

    untilTheStartHasEnded();
    EXPECT_TRUE(analyzer->isCapturing());
    EXPECT_EQ(countOf(*world.taps, Op::createProcessTap), 1);
    EXPECT_EQ(world.taps->liveObjectCount(), 3u);
    EXPECT_FALSE(analyzer->statusMessage().has_value());
    // The analysis runs from then on.
    int published = 0;
    Connection values = analyzer->valuesChanged.connect([&] { ++published; });
    world.executor->advanceBy(Seconds{0.33});
    EXPECT_EQ(published, 10);

    // Stopping is at once for the analyzer; the capture is removed by a background job.
    analyzer->setMenuBarEnabled(false);
    analyzer->meterWindowDisappeared();
    EXPECT_FALSE(analyzer->isCapturing());
    EXPECT_EQ(world.taps->liveObjectCount(), 3u);
    world.executor->advanceBy(slowStart);
    EXPECT_EQ(world.taps->liveObjectCount(), 0u);
}

TEST_F(CaptureStartTest, AFailedStartSaysSoWhenItEnds) {
    world.taps->failOperation(Op::createProcessTap, -1);
    const auto analyzer = world.makeAnalyzer();
    int stateChanges = 0;
    Connection connection = analyzer->stateChanged.connect([&] { ++stateChanges; });
    untilJustBeforeTheStartEnds();
    EXPECT_FALSE(analyzer->statusMessage().has_value());
    untilTheStartHasEnded();
    ASSERT_TRUE(analyzer->statusMessage().has_value());
    EXPECT_EQ(analyzer->statusMessage()->rfind("Could not create the audio tap (error -1).", 0),
              0u);
    EXPECT_EQ(stateChanges, 1);
    EXPECT_FALSE(analyzer->isCapturing());
    EXPECT_EQ(world.taps->liveObjectCount(), 0u);
}

TEST_F(CaptureStartTest, AStartNoLongerWantedWhenItEndsIsRemovedNotTakenOn) {
    const auto analyzer = world.makeAnalyzer();
    analyzer->setMenuBarEnabled(false);
    untilJustBeforeTheStartEnds();
    untilTheStartHasEnded();
    // Built, then handed back for removal: another background job, not the main thread's.
    EXPECT_FALSE(analyzer->isCapturing());
    EXPECT_EQ(world.taps->liveObjectCount(), 3u);
    world.executor->advanceBy(slowStart);
    EXPECT_EQ(countOf(*world.taps, Op::createProcessTap), 1);
    EXPECT_EQ(countOf(*world.taps, Op::destroyProcessTap), 1);
    EXPECT_EQ(world.taps->liveObjectCount(), 0u);
    EXPECT_FALSE(analyzer->isCapturing());
    EXPECT_FALSE(analyzer->statusMessage().has_value());
    EXPECT_EQ(analyzer->levels(), std::vector<float>(SpectrumAnalyzer::bandCount, 0.0f));
}

TEST_F(CaptureStartTest, OffAndOnAgainDuringAStartEndsWithOneFreshCapture) {
    const auto analyzer = world.makeAnalyzer();
    analyzer->setMenuBarEnabled(false);
    analyzer->setMenuBarEnabled(true);
    untilJustBeforeTheStartEnds();
    untilTheStartHasEnded();
    // The first start was stopped under way: its capture goes, and a new start follows it.
    EXPECT_FALSE(analyzer->isCapturing());
    world.executor->advanceBy(slowStart);
    EXPECT_TRUE(analyzer->isCapturing());
    expectOneCaptureAfterAReplacedOne();
    world.executor->advanceBy(Seconds{10});
    EXPECT_EQ(countOf(*world.taps, Op::createProcessTap), 2);
}

TEST_F(CaptureStartTest, ARebuildDueDuringAStartReplacesWhatThatStartBuilt) {
    const auto analyzer = world.makeAnalyzer();
    analyzer->deviceConfigurationChanged();
    // The rebuild falls due 0.6 s later, while the first start is still under way.
    world.executor->advanceBy(slowStart * 3);
    EXPECT_TRUE(analyzer->isCapturing());
    expectOneCaptureAfterAReplacedOne();
}

TEST_F(CaptureStartTest, AStartThatEndsAfterTheAnalyzerIsGoneLeavesNothingBehind) {
    std::weak_ptr<SpectrumAnalyzer> weak = world.makeAnalyzer();
    EXPECT_TRUE(weak.expired());
    // The analyzer went at the end of the run: what the start built goes as soon as it ends.
    world.executor->advanceBy(slowStart);
    EXPECT_EQ(countOf(*world.taps, Op::createProcessTap), 1);
    EXPECT_EQ(world.taps->liveObjectCount(), 0u);
    EXPECT_EQ(world.executor->pendingCount(), 0u);
}

}  // namespace
}  // namespace corvanel
