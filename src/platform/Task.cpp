#include "platform/Task.h"

namespace corvanel {
namespace detail {

Resumption::~Resumption() {
    if (done_ || state_->finished || !state_->root) return;
    state_->finished = true;
    std::exchange(state_->root, {}).destroy();
}

void Resumption::resume() {
    if (done_) return;
    done_ = true;
    state_->wakeOnCancel = nullptr;
    frame_.resume();
}

namespace {

// The outermost frame of a spawned task: it owns the task and marks the state finished.
struct Driver {
    struct promise_type {
        TaskState* state = nullptr;
        Driver get_return_object() noexcept {
            return Driver{std::coroutine_handle<promise_type>::from_promise(*this)};
        }
        std::suspend_always initial_suspend() noexcept { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_void() noexcept {}
        void unhandled_exception() noexcept { std::terminate(); }
    };
    std::coroutine_handle<promise_type> frame;
};

Driver drive(std::shared_ptr<TaskState> state, Task<void> task) {
    co_await std::move(task);
    state->finished = true;
    state->root = {};
}

}  // namespace
}  // namespace detail

TaskHandle spawn(const std::shared_ptr<MainExecutor>& executor, Task<void> task) {
    auto state = std::make_shared<detail::TaskState>();
    state->executor = executor;
    detail::Driver driver = detail::drive(state, std::move(task));
    driver.frame.promise().state = state.get();
    state->root = driver.frame;
    auto start = std::make_shared<detail::Resumption>(driver.frame, state);
    executor->post([start = std::move(start)] { start->resume(); });
    return TaskHandle{std::move(state)};
}

void TaskHandle::cancel() {
    if (!state_ || state_->cancelled) return;
    state_->cancelled = true;
    if (auto wake = std::exchange(state_->wakeOnCancel, nullptr)) wake();
}

SleepAwaiter sleepFor(Seconds duration) {
    return SleepAwaiter{std::chrono::duration_cast<std::chrono::nanoseconds>(duration)};
}

void SleepAwaiter::suspend(std::coroutine_handle<> frame, detail::TaskState& state) const {
    auto resumption = std::make_shared<detail::Resumption>(frame, state.shared_from_this());
    std::shared_ptr<MainExecutor> executor = state.executor.lock();
    if (!executor) return;  // dropping the resumption destroys the task's frames
    if (state.cancelled) {
        executor->post([resumption] { resumption->resume(); });
        return;
    }
    std::weak_ptr<detail::Resumption> early = resumption;
    std::weak_ptr<MainExecutor> weakExecutor = executor;
    state.wakeOnCancel = [early, weakExecutor] {
        auto target = weakExecutor.lock();
        auto pending = early.lock();
        if (target && pending) target->post([pending] { pending->resume(); });
    };
    executor->postAfter(delay, [resumption] { resumption->resume(); });
}

}  // namespace corvanel
