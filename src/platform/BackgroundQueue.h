#pragma once
// Blocking jobs that must neither overlap nor change order, such as the calls that create and
// remove one set of capture objects: each job's work runs on a background thread of the
// executor, at the priority of work the user waits for, once every job queued before it has
// finished, and its `done` then runs on the main
// thread. A job queued while others run is taken on by the thread that runs them, so queued work
// always runs in the background, also when the executor shuts down meanwhile (the `done`s are
// dropped then). A copy is a handle to the same queue.
#include <memory>

#include "platform/MainExecutor.h"

namespace corvanel {

class BackgroundQueue {
  public:
    explicit BackgroundQueue(std::shared_ptr<MainExecutor> executor);

    // Main thread. `done` may be empty. The `done`s of jobs that ran together are called
    // together, in order, once the last of them has finished.
    void run(MainExecutor::Work work, MainExecutor::Work done = nullptr);

  private:
    struct Shared;
    std::shared_ptr<MainExecutor> executor_;
    // Held by the background thread as well; it never holds the executor.
    std::shared_ptr<Shared> shared_;
};

}  // namespace corvanel
