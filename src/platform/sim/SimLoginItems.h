#pragma once
// The application's simulated login item: a status, and register/unregister calls that can be
// told to fail with a localized description.
#include <optional>
#include <string>
#include <vector>

#include "platform/LoginItems.h"

namespace corvanel {

class SimLoginItems final : public LoginItems {
  public:
    void setStatus(LoginItemStatus status);
    // While set, register and unregister fail with this description and change nothing.
    void failWith(std::optional<std::string> description);
    // "register" / "unregister", in the order they were asked for.
    const std::vector<std::string>& calls() const { return calls_; }

    LoginItemStatus status() override;
    std::optional<std::string> registerApp() override;
    std::optional<std::string> unregisterApp() override;

  private:
    LoginItemStatus status_ = LoginItemStatus::notRegistered;
    std::optional<std::string> failure_;
    std::vector<std::string> calls_;
};

}  // namespace corvanel
