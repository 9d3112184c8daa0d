#pragma once
// Port: which music player the engine follows, where a platform has many (MPRIS players on
// Linux). macOS has the one Music app and leaves this port out.
#include <optional>
#include <string>

#include "platform/Signal.h"

namespace corvanel {

class FollowedPlayer {
  public:
    virtual ~FollowedPlayer() = default;

    // The followed player's own name ("Rhythmbox"); nothing while no player runs.
    virtual std::optional<std::string> identity() const = 0;

    // Fires on the main thread when another player is followed, or none is left.
    Signal<> changed;
};

}  // namespace corvanel
