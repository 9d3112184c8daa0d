#include "platform/sim/SimLoginItems.h"

#include <utility>

namespace corvanel {

void SimLoginItems::setStatus(LoginItemStatus status) {
    status_ = status;
}

void SimLoginItems::failWith(std::optional<std::string> description) {
    failure_ = std::move(description);
}

LoginItemStatus SimLoginItems::status() {
    return status_;
}

std::optional<std::string> SimLoginItems::registerApp() {
    calls_.emplace_back("register");
    if (failure_) return failure_;
    status_ = LoginItemStatus::enabled;
    return std::nullopt;
}

std::optional<std::string> SimLoginItems::unregisterApp() {
    calls_.emplace_back("unregister");
    if (failure_) return failure_;
    status_ = LoginItemStatus::notRegistered;
    return std::nullopt;
}

}  // namespace corvanel
