#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/Task.h"
#include "platform/sim/VirtualTimeExecutor.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;

struct Owner {
    std::vector<std::string> events;
};

Task<> recordAfter(std::weak_ptr<Owner> weakOwner, Seconds delay, std::string event) {
    co_await sleepFor(delay);
    auto owner = weakOwner.lock();
    if (!owner) co_return;
    owner->events.push_back(event);
}

Task<int> answerLater(Seconds delay, int value) {
    co_await sleepFor(delay);
    co_return value;
}

Task<> sumOfChildren(std::weak_ptr<Owner> weakOwner) {
    const int first = co_await answerLater(0.5s, 20);
    const int second = co_await answerLater(0.25s, 22);
    if (auto owner = weakOwner.lock()) owner->events.push_back(std::to_string(first + second));
}

Task<> tickUntilCancelled(std::weak_ptr<Owner> weakOwner) {
    while (!co_await isCancelled()) {
        co_await sleepFor(0.033s);
        auto owner = weakOwner.lock();
        if (!owner) co_return;
        owner->events.push_back("tick");
    }
}

class TaskTest : public ::testing::Test {
  protected:
    std::shared_ptr<VirtualTimeExecutor> executor = std::make_shared<VirtualTimeExecutor>();
    std::shared_ptr<Owner> owner = std::make_shared<Owner>();
};

TEST_F(TaskTest, SpawnedTaskStartsOnTheNextTurnAndWaitsExactly) {
    spawn(executor, recordAfter(owner, 0.6s, "scan"));
    EXPECT_TRUE(owner->events.empty());
    executor->advanceBy(0.599s);
    EXPECT_TRUE(owner->events.empty());
    executor->advanceBy(0.001s);
    ASSERT_EQ(owner->events, std::vector<std::string>{"scan"});
    EXPECT_DOUBLE_EQ(executor->elapsed().count(), 0.6);
}

TEST_F(TaskTest, AwaitedChildTasksPassTheirValues) {
    spawn(executor, sumOfChildren(owner));
    executor->advanceBy(0.7s);
    EXPECT_TRUE(owner->events.empty());
    executor->advanceBy(0.05s);
    EXPECT_EQ(owner->events, std::vector<std::string>{"42"});
}

TEST_F(TaskTest, TaskWhoseOwnerIsGoneEndsQuietly) {
    const TaskHandle handle = spawn(executor, recordAfter(owner, 1s, "late"));
    std::weak_ptr<Owner> weak = owner;
    owner.reset();
    executor->advanceBy(2s);
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(handle.isFinished());
    EXPECT_EQ(executor->pendingCount(), 0u);
}

TEST_F(TaskTest, CancellationWakesASleepAtOnceAndLetsTheTaskDecide) {
    TaskHandle loop = spawn(executor, tickUntilCancelled(owner));
    executor->advanceBy(0.1s);
    EXPECT_EQ(owner->events.size(), 3u);  // 33, 66, 99 ms
    executor->advanceBy(0.01s);
    loop.cancel();
    executor->runUntilIdle();
    // The cut-short sleep still lets its one tick run; the loop then sees the cancellation.
    EXPECT_EQ(owner->events.size(), 4u);
    EXPECT_TRUE(loop.isFinished());
    executor->advanceBy(1s);
    EXPECT_EQ(owner->events.size(), 4u);
}

TEST_F(TaskTest, BackgroundWorkHandsItsValueBackOnTheMainExecutor) {
    executor->setBackgroundDuration(2s);
    auto body = [](std::weak_ptr<Owner> weakOwner) -> Task<> {
        const std::string value = co_await runInBackground([] { return std::string("outcome"); });
        if (auto strong = weakOwner.lock()) strong->events.push_back(value);
    };
    spawn(executor, body(owner));
    executor->advanceBy(1.9s);
    EXPECT_TRUE(owner->events.empty());
    executor->advanceBy(0.1s);
    EXPECT_EQ(owner->events, std::vector<std::string>{"outcome"});
}

TEST(TaskLifetime, PendingTasksAreDestroyedWithTheirExecutor) {
    auto executor = std::make_shared<VirtualTimeExecutor>();
    auto owner = std::make_shared<Owner>();
    auto tracker = std::make_shared<int>(0);
    auto holdsTracker = [](std::shared_ptr<int> held) -> Task<> {
        co_await sleepFor(std::chrono::hours(1));
        ++*held;
    };
    spawn(executor, holdsTracker(tracker));
    executor->advanceBy(1s);
    EXPECT_EQ(tracker.use_count(), 2);
    executor.reset();
    // The suspended frame (and the reference it held) went away with the executor.
    EXPECT_EQ(tracker.use_count(), 1);
    EXPECT_EQ(*tracker, 0);
}

}  // namespace
}  // namespace corvanel
