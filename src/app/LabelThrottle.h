#pragma once
// Paces the label images sent to the status item. A StatusNotifierItem tray ships every new icon
// over D-Bus to the desktop shell, which re-decodes and redraws it, so the label must not follow
// the analyzer's 30 updates a second there: an image equal to the last one is dropped, and at
// most one image per interval goes out, the newest one, at the end of the interval.
#include <QImage>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/Clock.h"
#include "platform/MainExecutor.h"

namespace corvanel {

class LabelThrottle {
  public:
    using Deliver = std::function<void(const QImage&)>;

    // An interval of zero delivers every changed image at once.
    LabelThrottle(std::shared_ptr<MainExecutor> executor, Seconds minimumInterval, Deliver deliver);
    ~LabelThrottle();
    LabelThrottle(const LabelThrottle&) = delete;
    LabelThrottle& operator=(const LabelThrottle&) = delete;

    void offer(QImage image);
    std::uint64_t deliveredCount() const { return state_->delivered; }

  private:
    struct State {
        Deliver deliver;
        QImage lastDelivered;
        QImage pending;
        bool hasPending = false;
        bool flushScheduled = false;
        std::optional<MonoTime> lastDeliveryTime;
        std::uint64_t delivered = 0;
    };
    static void deliverNow(State& state, QImage image, MonoTime now);

    std::shared_ptr<MainExecutor> executor_;
    std::chrono::nanoseconds interval_;
    std::shared_ptr<State> state_;
};

}  // namespace corvanel
