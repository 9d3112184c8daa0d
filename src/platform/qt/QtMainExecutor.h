#pragma once
// The MainExecutor of a running application: the Qt event loop of the GUI thread, background
// threads for blocking work, and the real clocks.
//
// Work waits in the executor's own inbox; Qt's queue and timers carry only its number. Shutting
// down drops the inbox on the main thread while the application object still exists, and later
// work is dropped without touching Qt. So no work (a suspended task holding the engine) is ever
// destroyed inside Qt's own teardown, where the engine's teardown posting an event would wait
// on Qt's lock for ever.
#include <QObject>
#include <memory>

#include "platform/MainExecutor.h"

namespace corvanel {

class QtMainExecutor final : public MainExecutor {
  public:
    QtMainExecutor();
    // Shuts down: pending work is dropped, running background work is not waited for.
    ~QtMainExecutor() override;

    QtMainExecutor(const QtMainExecutor&) = delete;
    QtMainExecutor& operator=(const QtMainExecutor&) = delete;

    void post(Work work) override;
    void postAfter(std::chrono::nanoseconds delay, Work work) override;
    void runInBackground(Work work, Work done, BackgroundPriority priority) override;
    void shutDown() override;
    MonoTime monotonicNow() const override;
    WallTime wallNow() const override;

  private:
    class Inbox;

    // Lives on the GUI thread; Qt delivers the inbox's numbers through its event queue.
    QObject context_;
    // Shared with background threads, which outlive a shut-down executor.
    std::shared_ptr<Inbox> inbox_;
};

}  // namespace corvanel
