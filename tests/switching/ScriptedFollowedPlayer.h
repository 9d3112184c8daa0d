#pragma once
// The followed player as a test scripts it: the player of the moment, and a change announced
// whenever the test moves on to another (or to none).
#include <optional>
#include <string>
#include <utility>

#include "platform/FollowedPlayer.h"

namespace corvanel::testing {

class ScriptedFollowedPlayer final : public FollowedPlayer {
  public:
    std::optional<std::string> identity() const override { return name; }
    void follow(std::optional<std::string> next) {
        name = std::move(next);
        changed.emit();
    }

    std::optional<std::string> name;
};

}  // namespace corvanel::testing
