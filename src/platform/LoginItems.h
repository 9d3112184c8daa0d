#pragma once
// Port: the application's own login item (SMAppService.mainApp status / register / unregister).
#include <optional>
#include <string>

namespace corvanel {

enum class LoginItemStatus { notRegistered, enabled, requiresApproval, notFound };

class LoginItems {
  public:
    virtual ~LoginItems() = default;

    virtual LoginItemStatus status() = 0;
    // Nothing on success, else the failure's localized description.
    virtual std::optional<std::string> registerApp() = 0;
    virtual std::optional<std::string> unregisterApp() = 0;
};

}  // namespace corvanel
