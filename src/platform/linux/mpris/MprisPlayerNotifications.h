#pragma once
// The player-notification port on Linux: the Music app's "playerInfo" notification, posted for
// the followed MPRIS player. "Player State" is "Playing" whenever it starts a track (it starts
// playing, or moves to a new track while playing: players announce a new track with Metadata
// alone), "Paused" or "Stopped" when it halts. Handlers run on the main executor's next turn.
// Main thread only.
#include <map>
#include <memory>
#include <string>

#include "platform/MainExecutor.h"
#include "platform/PlayerNotifications.h"
#include "platform/Signal.h"
#include "platform/linux/mpris/MprisPlayers.h"

namespace corvanel {

class MprisPlayerNotifications final : public PlayerNotifications {
  public:
    static constexpr const char* playerInfo = "com.apple.Music.playerInfo";

    MprisPlayerNotifications(std::shared_ptr<MainExecutor> executor, MprisPlayers& players);

    NotificationObserverToken addObserver(const std::string& name, Handler handler) override;

  private:
    struct Observer {
        std::string name;
        Handler handler;
    };

    void post(const std::string& state);

    std::shared_ptr<MainExecutor> executor_;
    std::map<NotificationObserverToken, Observer> observers_;
    NotificationObserverToken nextToken_ = 1;
    Connection started_;
    Connection halted_;
};

}  // namespace corvanel
