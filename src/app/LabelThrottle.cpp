#include "app/LabelThrottle.h"

namespace corvanel {

LabelThrottle::LabelThrottle(std::shared_ptr<MainExecutor> executor, Seconds minimumInterval,
                             Deliver deliver)
    : executor_(std::move(executor)),
      interval_(std::chrono::duration_cast<std::chrono::nanoseconds>(minimumInterval)),
      state_(std::make_shared<State>()) {
    state_->deliver = std::move(deliver);
}

LabelThrottle::~LabelThrottle() = default;

void LabelThrottle::deliverNow(State& state, QImage image, MonoTime now) {
    state.lastDeliveryTime = now;
    state.lastDelivered = std::move(image);
    ++state.delivered;
    state.deliver(state.lastDelivered);
}

void LabelThrottle::offer(QImage image) {
    State& state = *state_;
    if (!state.flushScheduled && image == state.lastDelivered) return;
    const MonoTime now = executor_->monotonicNow();
    const bool due = !state.lastDeliveryTime || now - *state.lastDeliveryTime >= interval_;
    if (due && !state.flushScheduled) {
        deliverNow(state, std::move(image), now);
        return;
    }
    state.pending = std::move(image);
    state.hasPending = true;
    if (state.flushScheduled) return;
    state.flushScheduled = true;
    const auto wait = *state.lastDeliveryTime + interval_ - now;
    std::weak_ptr<State> weak = state_;
    std::weak_ptr<MainExecutor> executor = executor_;
    executor_->postAfter(wait, [weak, executor] {
        const auto flushing = weak.lock();
        const auto clock = executor.lock();
        if (!flushing || !clock) return;
        flushing->flushScheduled = false;
        if (!flushing->hasPending) return;
        flushing->hasPending = false;
        QImage newest = std::exchange(flushing->pending, {});
        if (newest == flushing->lastDelivered) return;
        deliverNow(*flushing, std::move(newest), clock->monotonicNow());
    });
}

}  // namespace corvanel
