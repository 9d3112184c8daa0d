#include "platform/sim/SimPlayerNotifications.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace corvanel {

SimPlayerNotifications::SimPlayerNotifications(std::shared_ptr<MainExecutor> executor)
    : executor_(std::move(executor)) {}

void SimPlayerNotifications::post(const std::string& name, std::optional<UserInfo> userInfo) {
    std::vector<Handler> handlers;
    {
        std::lock_guard lock(mutex_);
        for (const auto& [token, observer] : observers_) {
            if (observer.name == name) handlers.push_back(observer.handler);
        }
    }
    for (Handler& handler : handlers) {
        executor_->post([handler = std::move(handler), userInfo] { handler(userInfo); });
    }
}

std::size_t SimPlayerNotifications::observerCount(const std::string& name) const {
    std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(
        std::count_if(observers_.begin(), observers_.end(),
                      [&name](const auto& entry) { return entry.second.name == name; }));
}

NotificationObserverToken SimPlayerNotifications::addObserver(const std::string& name,
                                                              Handler handler) {
    std::lock_guard lock(mutex_);
    const NotificationObserverToken token = nextToken_++;
    observers_[token] = Observer{name, std::move(handler)};
    return token;
}

}  // namespace corvanel
