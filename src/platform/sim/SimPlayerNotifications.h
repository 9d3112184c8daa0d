#pragma once
// Simulated distributed notifications: post(name, user info) reaches every observer of that name
// on the main executor's next turn, as the main operation queue would deliver it.
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/MainExecutor.h"
#include "platform/PlayerNotifications.h"

namespace corvanel {

class SimPlayerNotifications final : public PlayerNotifications {
  public:
    explicit SimPlayerNotifications(std::shared_ptr<MainExecutor> executor);

    void post(const std::string& name, std::optional<UserInfo> userInfo = std::nullopt);
    std::size_t observerCount(const std::string& name) const;

    NotificationObserverToken addObserver(const std::string& name, Handler handler) override;

  private:
    struct Observer {
        std::string name;
        Handler handler;
    };

    std::shared_ptr<MainExecutor> executor_;
    mutable std::mutex mutex_;
    std::map<NotificationObserverToken, Observer> observers_;
    NotificationObserverToken nextToken_ = 1;
};

}  // namespace corvanel
