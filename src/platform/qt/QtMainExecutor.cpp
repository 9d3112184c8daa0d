#include "platform/qt/QtMainExecutor.h"

#include <QMetaObject>
#include <QTimer>

namespace corvanel {

QtMainExecutor::QtMainExecutor() = default;
QtMainExecutor::~QtMainExecutor() = default;

void QtMainExecutor::post(Work work) {
    QMetaObject::invokeMethod(&context_, std::move(work), Qt::QueuedConnection);
}

void QtMainExecutor::postAfter(std::chrono::nanoseconds delay, Work work) {
    // QTimer counts whole milliseconds; round up so a wait never ends early.
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(delay);
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &context_, std::move(work));
}

void QtMainExecutor::runInBackground(Work work) {
    background_.start(std::move(work));
}

MonoTime QtMainExecutor::monotonicNow() const {
    return std::chrono::steady_clock::now();
}

WallTime QtMainExecutor::wallNow() const {
    return std::chrono::system_clock::now();
}

}  // namespace corvanel
