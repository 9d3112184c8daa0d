#include "platform/qt/QtMainExecutor.h"

#include <QMetaObject>
#include <QTimer>
#include <algorithm>
#include <cstdint>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <unordered_map>
#include <utility>

#if defined(__APPLE__)
#include <pthread/qos.h>
#elif defined(__linux__)
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace corvanel {
namespace {

void setThisThreadsPriority(BackgroundPriority priority) {
#if defined(__APPLE__)
    pthread_set_qos_class_self_np(
        priority == BackgroundPriority::utility ? QOS_CLASS_UTILITY : QOS_CLASS_USER_INITIATED, 0);
#elif defined(__linux__)
    // On Linux a thread's nice value is its own, and threads it starts inherit it: utility work
    // goes ten steps below the process, at most 19; other work keeps the main thread's.
    if (priority != BackgroundPriority::utility) return;
    const auto thread = static_cast<id_t>(gettid());
    setpriority(PRIO_PROCESS, thread, std::min(getpriority(PRIO_PROCESS, thread) + 10, 19));
#else
    (void)priority;
#endif
}

}  // namespace

// Work by number until Qt delivers the number on the main thread. Qt is touched only while the
// inbox is open, under its lock.
class QtMainExecutor::Inbox {
  public:
    explicit Inbox(QObject* context) : context_(context) {}

    // Keeps `work` under a new number; nothing once closed (then `work` is dropped by the caller,
    // outside the lock).
    std::optional<std::uint64_t> keep(Work& work) {
        std::lock_guard lock(mutex_);
        if (!open_) return std::nullopt;
        const std::uint64_t number = nextNumber_++;
        pending_.emplace(number, std::move(work));
        return number;
    }

    // Posts the kept work `number` to the main thread, unless the inbox has closed.
    void deliver(const std::shared_ptr<Inbox>& self, std::uint64_t number) {
        std::lock_guard lock(mutex_);
        if (!open_) return;
        QMetaObject::invokeMethod(
            context_, [weak = std::weak_ptr<Inbox>(self), number] { run(weak, number); },
            Qt::QueuedConnection);
    }

    // Has Qt's timer deliver the kept work `number` after `delay`. Main thread.
    void deliverAfter(const std::shared_ptr<Inbox>& self, std::chrono::milliseconds delay,
                      std::uint64_t number) {
        std::lock_guard lock(mutex_);
        if (!open_) return;
        QTimer::singleShot(delay, Qt::PreciseTimer, context_,
                           [weak = std::weak_ptr<Inbox>(self), number] { run(weak, number); });
    }

    // Closes the inbox and drops what it holds, outside the lock: dropped tasks may post again.
    void close() {
        std::unordered_map<std::uint64_t, Work> dropped;
        {
            std::lock_guard lock(mutex_);
            open_ = false;
            dropped.swap(pending_);
        }
    }

  private:
    static void run(const std::weak_ptr<Inbox>& weak, std::uint64_t number) {
        const auto inbox = weak.lock();
        if (!inbox) return;
        Work work;
        {
            std::lock_guard lock(inbox->mutex_);
            const auto found = inbox->pending_.find(number);
            if (found == inbox->pending_.end()) return;
            work = std::move(found->second);
            inbox->pending_.erase(found);
        }
        work();
    }

    std::mutex mutex_;
    bool open_ = true;
    QObject* context_;
    std::uint64_t nextNumber_ = 0;
    std::unordered_map<std::uint64_t, Work> pending_;
};

QtMainExecutor::QtMainExecutor() : inbox_(std::make_shared<Inbox>(&context_)) {}

QtMainExecutor::~QtMainExecutor() {
    shutDown();
}

void QtMainExecutor::post(Work work) {
    if (const auto number = inbox_->keep(work)) inbox_->deliver(inbox_, *number);
}

void QtMainExecutor::postAfter(std::chrono::nanoseconds delay, Work work) {
    // QTimer counts whole milliseconds; round up so a wait never ends early.
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(delay);
    if (const auto number = inbox_->keep(work)) inbox_->deliverAfter(inbox_, milliseconds, *number);
}

void QtMainExecutor::runInBackground(Work work, Work done, BackgroundPriority priority) {
    const auto number = inbox_->keep(done);
    if (!number) return;
    const auto job = [inbox = inbox_, work = std::move(work), number = *number] {
        work();
        inbox->deliver(inbox, number);
    };
    try {
        // Detached: quitting does not wait for a scan that is still reading.
        std::thread([job, priority] {
            setThisThreadsPriority(priority);
            job();
        }).detach();
    } catch (const std::system_error&) {
        // No thread to be had: the work runs here rather than never.
        job();
    }
}

void QtMainExecutor::shutDown() {
    inbox_->close();
}

MonoTime QtMainExecutor::monotonicNow() const {
    return std::chrono::steady_clock::now();
}

WallTime QtMainExecutor::wallNow() const {
    return std::chrono::system_clock::now();
}

}  // namespace corvanel
