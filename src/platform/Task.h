#pragma once
// Coroutine tasks on the main executor. Operations that wait (delayed scans, polling, the
// pause-switch-restart sequence, the analysis tick, debounces) are written as Task<> coroutines
// so each reads top to bottom. A spawned task runs on the executor it was spawned on; every
// frame it awaits shares one TaskState (executor, cancellation, the root frame).
//
// Rules for coroutine code in this project:
// - take parameters by value (references dangle across suspension); never write a coroutine
//   lambda with captures;
// - a spawned task holds its owner weakly and re-checks it after every wait;
// - work values out before a co_await: GCC 12 miscompiles a conditional expression or a
//   temporary capturing lambda inside the awaited expression (a capture was released twice).
#include <coroutine>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "platform/Clock.h"
#include "platform/MainExecutor.h"

namespace corvanel {

template <typename T = void>
class Task;

namespace detail {

struct TaskState : std::enable_shared_from_this<TaskState> {
    std::weak_ptr<MainExecutor> executor;
    bool cancelled = false;
    bool finished = false;
    std::coroutine_handle<> root;        // destroying it destroys every frame of the task
    std::function<void()> wakeOnCancel;  // set while a cancellable wait is suspended
};

// Resumes a suspended frame at most once. Dropped without having resumed (its executor went
// away with the work still queued), it destroys the task's frames so nothing leaks.
class Resumption {
  public:
    Resumption(std::coroutine_handle<> frame, std::shared_ptr<TaskState> state)
        : frame_(frame), state_(std::move(state)) {}
    Resumption(const Resumption&) = delete;
    Resumption& operator=(const Resumption&) = delete;
    ~Resumption();

    void resume();

  private:
    std::coroutine_handle<> frame_;
    std::shared_ptr<TaskState> state_;
    bool done_ = false;
};

struct PromiseBase {
    std::coroutine_handle<> continuation;
    TaskState* state = nullptr;

    std::suspend_always initial_suspend() noexcept { return {}; }
    struct FinalAwaiter {
        bool await_ready() noexcept { return false; }
        template <typename P>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<P> frame) noexcept {
            if (auto next = frame.promise().continuation) return next;
            return std::noop_coroutine();
        }
        void await_resume() noexcept {}
    };
    FinalAwaiter final_suspend() noexcept { return {}; }
    // No exception crosses a task: failures are values.
    void unhandled_exception() noexcept { std::terminate(); }
};

template <typename T>
struct Promise : PromiseBase {
    std::optional<T> value;
    Task<T> get_return_object() noexcept;
    template <typename U>
    void return_value(U&& result) {
        value.emplace(std::forward<U>(result));
    }
};

template <>
struct Promise<void> : PromiseBase {
    Task<void> get_return_object() noexcept;
    void return_void() noexcept {}
};

template <typename P>
TaskState& stateOf(std::coroutine_handle<P> frame) {
    return *frame.promise().state;
}

}  // namespace detail

// A lazily started coroutine that owns its frame; awaited by another task, or spawned.
template <typename T>
class [[nodiscard]] Task {
  public:
    using promise_type = detail::Promise<T>;
    using Handle = std::coroutine_handle<promise_type>;

    Task() = default;
    explicit Task(Handle frame) : frame_(frame) {}
    Task(Task&& other) noexcept : frame_(std::exchange(other.frame_, {})) {}
    Task& operator=(Task&& other) noexcept {
        if (this != &other) {
            reset();
            frame_ = std::exchange(other.frame_, {});
        }
        return *this;
    }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task() { reset(); }

    struct Awaiter {
        Handle child;
        bool await_ready() const noexcept { return !child || child.done(); }
        template <typename P>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<P> parent) noexcept {
            child.promise().continuation = parent;
            child.promise().state = parent.promise().state;
            return child;
        }
        T await_resume() {
            if constexpr (!std::is_void_v<T>) return std::move(*child.promise().value);
        }
    };
    Awaiter operator co_await() && noexcept { return Awaiter{frame_}; }

  private:
    void reset() {
        if (frame_) frame_.destroy();
        frame_ = {};
    }
    Handle frame_;
};

namespace detail {
template <typename T>
Task<T> Promise<T>::get_return_object() noexcept {
    return Task<T>{std::coroutine_handle<Promise<T>>::from_promise(*this)};
}
inline Task<void> Promise<void>::get_return_object() noexcept {
    return Task<void>{std::coroutine_handle<Promise<void>>::from_promise(*this)};
}
}  // namespace detail

// The handle of a spawned task: cancel it, or ask whether it has ended. Cancelling wakes a
// pending sleep early; the task's own code decides what to do next.
class TaskHandle {
  public:
    TaskHandle() = default;
    explicit TaskHandle(std::shared_ptr<detail::TaskState> state) : state_(std::move(state)) {}

    void cancel();
    bool isCancelled() const { return state_ && state_->cancelled; }
    bool isFinished() const { return !state_ || state_->finished; }

  private:
    std::shared_ptr<detail::TaskState> state_;
};

// Starts `task` on the executor's next turn (as a new main-thread task does) and returns its
// handle. The task lives until it ends, is destroyed with its executor, or never starts.
TaskHandle spawn(const std::shared_ptr<MainExecutor>& executor, Task<void> task);

// co_await sleepFor(d): resumes on the main executor after d on the monotonic clock, or as soon
// as the task is cancelled (a sleep in a cancelled task returns at once).
struct SleepAwaiter {
    std::chrono::nanoseconds delay;

    bool await_ready() const noexcept { return false; }
    template <typename P>
    void await_suspend(std::coroutine_handle<P> frame) {
        suspend(frame, detail::stateOf(frame));
    }
    void await_resume() const noexcept {}

  private:
    void suspend(std::coroutine_handle<> frame, detail::TaskState& state) const;
};
SleepAwaiter sleepFor(Seconds duration);

// co_await isCancelled(): whether the running task has been cancelled. Does not suspend.
struct CancelledQuery {
    const detail::TaskState* state = nullptr;
    bool await_ready() const noexcept { return false; }
    template <typename P>
    bool await_suspend(std::coroutine_handle<P> frame) noexcept {
        state = &detail::stateOf(frame);
        return false;
    }
    bool await_resume() const noexcept { return state->cancelled; }
};
inline CancelledQuery isCancelled() {
    return {};
}

// co_await runInBackground(fn): runs fn on a background thread of utility priority and resumes on
// the main thread with its value. fn must not touch main-thread state. The suspended task stays
// with the executor, not with fn, so it can be dropped while fn still runs.
template <typename F>
struct BackgroundAwaiter {
    using Result = std::invoke_result_t<F&>;
    F work;
    std::shared_ptr<std::optional<Result>> result = std::make_shared<std::optional<Result>>();

    bool await_ready() const noexcept { return false; }
    template <typename P>
    void await_suspend(std::coroutine_handle<P> frame) {
        detail::TaskState& state = detail::stateOf(frame);
        auto resumption = std::make_shared<detail::Resumption>(frame, state.shared_from_this());
        std::shared_ptr<MainExecutor> executor = state.executor.lock();
        if (!executor) return;  // no executor: the task can never resume; the drop destroys it
        executor->runInBackground(
            [out = result, work = std::move(work)]() mutable { out->emplace(work()); },
            [resumption = std::move(resumption)] { resumption->resume(); },
            BackgroundPriority::utility);
    }
    Result await_resume() { return std::move(**result); }
};

template <typename F>
BackgroundAwaiter<F> runInBackground(F work) {
    return BackgroundAwaiter<F>{std::move(work)};
}

}  // namespace corvanel
