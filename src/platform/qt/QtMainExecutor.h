#pragma once
// The MainExecutor of a running application: the Qt event loop of the GUI thread, a thread
// pool for blocking work, and the real clocks.
#include <QObject>
#include <QThreadPool>

#include "platform/MainExecutor.h"

namespace corvanel {

class QtMainExecutor final : public MainExecutor {
  public:
    QtMainExecutor();
    ~QtMainExecutor() override;

    void post(Work work) override;
    void postAfter(std::chrono::nanoseconds delay, Work work) override;
    void runInBackground(Work work) override;
    MonoTime monotonicNow() const override;
    WallTime wallNow() const override;

  private:
    // Lives on the GUI thread; queued work is delivered through its event queue and dropped
    // with it.
    QObject context_;
    // Our own pool: Qt's global one paints the meters' frames and must not wait behind a scan.
    // Destroyed first, so work that finishes meanwhile can still post to the context.
    QThreadPool background_;
};

}  // namespace corvanel
