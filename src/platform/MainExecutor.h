#pragma once
// Port: the main thread's run loop, a background thread for blocking work, and the clocks.
// Production runs it on the Qt event loop; tests on virtual time that advances only when told.
#include <chrono>
#include <functional>

#include "platform/Clock.h"

namespace corvanel {

// How a background thread stands against the rest of the process.
enum class BackgroundPriority {
    // Yields to everything the user sees and hears (the log scan).
    utility,
    // Work the user waits for; threads it starts (a sound server's client thread that delivers
    // captured audio) keep that priority.
    userInitiated,
};

class MainExecutor {
  public:
    using Work = std::function<void()>;

    virtual ~MainExecutor() = default;

    // Runs `work` on the main thread after the current work item. Safe from any thread.
    virtual void post(Work work) = 0;
    // Runs `work` on the main thread once `delay` has passed on the monotonic clock.
    virtual void postAfter(std::chrono::nanoseconds delay, Work work) = 0;
    // Runs `work` on a background thread of that priority, then `done` on the main thread.
    // Meanwhile `done` waits with the executor, not with the work, so shutting down drops it on
    // the main thread without waiting for the work.
    virtual void runInBackground(Work work, Work done, BackgroundPriority priority) = 0;
    // The end of the run, on the main thread: drops every pending work item (and what it holds)
    // now, and every item posted later. Nothing waits for background work.
    virtual void shutDown() = 0;

    virtual MonoTime monotonicNow() const = 0;
    virtual WallTime wallNow() const = 0;
};

}  // namespace corvanel
