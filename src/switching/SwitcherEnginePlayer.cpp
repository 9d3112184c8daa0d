#include "switching/SwitcherEngine.h"

namespace corvanel {

void SwitcherEngine::logStart() {
    if (!ports_.player) {
        logLine("Started \u2014 watching Apple Music track changes");
        return;
    }
    const std::optional<std::string> identity = ports_.player->identity();
    logLine(identity ? "Started \u2014 watching " + *identity + " track changes"
                     : "Started \u2014 waiting for a music player to start");
    const std::weak_ptr<SwitcherEngine> weak = weak_from_this();
    followedPlayerChanged_ = ports_.player->changed.connect([weak] {
        if (const auto engine = weak.lock()) engine->logFollowedPlayer();
    });
}

void SwitcherEngine::logFollowedPlayer() {
    const std::optional<std::string> identity = ports_.player->identity();
    logLine(identity ? "Now watching " + *identity + " track changes"
                     : "Waiting for a music player to start");
}

}  // namespace corvanel
