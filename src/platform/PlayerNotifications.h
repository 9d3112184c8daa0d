#pragma once
// Port: distributed notifications (NSDistributedNotificationCenter addObserver:selector:name:
// object:suspensionBehavior: with no sender filter, delivered immediately on the main thread).
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>

namespace corvanel {

// A user-info value of a type this program does not read.
struct OtherUserInfoValue {
    friend bool operator==(const OtherUserInfoValue&, const OtherUserInfoValue&) = default;
};
using UserInfoValue = std::variant<std::string, std::int64_t, double, bool, OtherUserInfoValue>;
using UserInfo = std::map<std::string, UserInfoValue>;

using NotificationObserverToken = std::uint64_t;

class PlayerNotifications {
  public:
    // Called on the main thread; the user info is absent when the notification carries none.
    using Handler = std::function<void(const std::optional<UserInfo>& userInfo)>;

    virtual ~PlayerNotifications() = default;

    virtual NotificationObserverToken addObserver(const std::string& name, Handler handler) = 0;
};

}  // namespace corvanel
