#pragma once
// A MainExecutor on virtual time: nothing runs until the test (or tool) says so, and time moves
// only by advanceBy/advanceTo. "Two notifications one second apart" is then an exact, instant
// test. Background work runs on the same thread, after `backgroundDuration` of virtual time.
#include <cstdint>
#include <mutex>
#include <vector>

#include "platform/MainExecutor.h"

namespace corvanel {

class VirtualTimeExecutor final : public MainExecutor {
  public:
    explicit VirtualTimeExecutor(WallTime wallStart = WallTime{} + std::chrono::hours(24 * 20000));
    ~VirtualTimeExecutor() override;

    void post(Work work) override;
    void postAfter(std::chrono::nanoseconds delay, Work work) override;
    // Whatever the priority.
    void runInBackground(Work work, Work done, BackgroundPriority priority) override;
    void shutDown() override;
    MonoTime monotonicNow() const override;
    WallTime wallNow() const override;

    // Runs everything due now, including work that it posts for now.
    void runUntilIdle();
    // Runs everything due within `duration`, in time order, moving the clock to each item's time.
    void advanceBy(Seconds duration);
    void advanceTo(MonoTime time);
    // Runs everything due before `time` and moves the clock to it; what is due at `time` itself
    // waits, so that something can happen at that instant first.
    void advanceUpTo(MonoTime time);

    // How long (virtual) a background job takes before its result is posted back.
    void setBackgroundDuration(Seconds duration);
    std::size_t pendingCount() const;
    Seconds elapsed() const;

  private:
    struct Item {
        MonoTime due;
        std::uint64_t order;
        Work work;
    };
    // Runs the next item due by `limit` (or before it, when `before`); false when there is none.
    bool runNextDueBy(MonoTime limit, bool before = false);

    mutable std::mutex mutex_;
    std::vector<Item> queue_;
    std::uint64_t nextOrder_ = 0;
    MonoTime now_{};
    WallTime wallStart_;
    std::chrono::nanoseconds backgroundDuration_{0};
    bool closed_ = false;
};

}  // namespace corvanel
