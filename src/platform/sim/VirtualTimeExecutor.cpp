#include "platform/sim/VirtualTimeExecutor.h"

#include <algorithm>
#include <utility>

namespace corvanel {

VirtualTimeExecutor::VirtualTimeExecutor(WallTime wallStart) : wallStart_(wallStart) {}

VirtualTimeExecutor::~VirtualTimeExecutor() {
    shutDown();
}

void VirtualTimeExecutor::shutDown() {
    std::vector<Item> dropped;
    {
        std::lock_guard lock(mutex_);
        closed_ = true;
        dropped.swap(queue_);
    }
    // Dropped here, outside the lock: destroying a suspended task may post (and be dropped) again.
}

void VirtualTimeExecutor::post(Work work) {
    postAfter(std::chrono::nanoseconds{0}, std::move(work));
}

void VirtualTimeExecutor::postAfter(std::chrono::nanoseconds delay, Work work) {
    {
        std::lock_guard lock(mutex_);
        if (closed_) return;  // `work` is destroyed after the lock is released
        queue_.push_back(
            {now_ + std::max(delay, std::chrono::nanoseconds{0}), nextOrder_++, std::move(work)});
    }
}

void VirtualTimeExecutor::runInBackground(Work work, Work done, BackgroundPriority) {
    std::chrono::nanoseconds duration;
    {
        std::lock_guard lock(mutex_);
        duration = backgroundDuration_;
    }
    postAfter(duration, [this, work = std::move(work), done = std::move(done)] {
        work();
        post(done);
    });
}

MonoTime VirtualTimeExecutor::monotonicNow() const {
    std::lock_guard lock(mutex_);
    return now_;
}

WallTime VirtualTimeExecutor::wallNow() const {
    std::lock_guard lock(mutex_);
    return wallStart_ + std::chrono::duration_cast<WallTime::duration>(now_.time_since_epoch());
}

bool VirtualTimeExecutor::runNextDueBy(MonoTime limit, bool before) {
    Work work;
    {
        std::lock_guard lock(mutex_);
        auto next =
            std::min_element(queue_.begin(), queue_.end(), [](const Item& a, const Item& b) {
                return a.due != b.due ? a.due < b.due : a.order < b.order;
            });
        if (next == queue_.end() || next->due > limit || (before && next->due == limit))
            return false;
        now_ = std::max(now_, next->due);
        work = std::move(next->work);
        queue_.erase(next);
    }
    work();
    return true;
}

void VirtualTimeExecutor::runUntilIdle() {
    while (runNextDueBy(monotonicNow())) {
    }
}

void VirtualTimeExecutor::advanceBy(Seconds duration) {
    advanceTo(monotonicNow() + std::chrono::duration_cast<std::chrono::nanoseconds>(duration));
}

void VirtualTimeExecutor::advanceTo(MonoTime time) {
    while (runNextDueBy(time)) {
    }
    std::lock_guard lock(mutex_);
    now_ = std::max(now_, time);
}

void VirtualTimeExecutor::advanceUpTo(MonoTime time) {
    while (runNextDueBy(time, true)) {
    }
    std::lock_guard lock(mutex_);
    now_ = std::max(now_, time);
}

void VirtualTimeExecutor::setBackgroundDuration(Seconds duration) {
    std::lock_guard lock(mutex_);
    backgroundDuration_ = std::chrono::duration_cast<std::chrono::nanoseconds>(duration);
}

std::size_t VirtualTimeExecutor::pendingCount() const {
    std::lock_guard lock(mutex_);
    return queue_.size();
}

Seconds VirtualTimeExecutor::elapsed() const {
    std::lock_guard lock(mutex_);
    return std::chrono::duration_cast<Seconds>(now_.time_since_epoch());
}

}  // namespace corvanel
