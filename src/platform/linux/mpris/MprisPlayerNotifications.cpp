#include "platform/linux/mpris/MprisPlayerNotifications.h"

#include <utility>

namespace corvanel {

MprisPlayerNotifications::MprisPlayerNotifications(std::shared_ptr<MainExecutor> executor,
                                                   MprisPlayers& players)
    : executor_(std::move(executor)) {
    started_ = players.playbackStarted.connect(
        [this](const MprisPlayers::PlaybackStart&) { post("Playing"); });
    halted_ = players.playbackHalted.connect([this](PlaybackStatus status) {
        post(status == PlaybackStatus::paused ? "Paused" : "Stopped");
    });
}

NotificationObserverToken MprisPlayerNotifications::addObserver(const std::string& name,
                                                                Handler handler) {
    const NotificationObserverToken token = nextToken_++;
    observers_[token] = Observer{name, std::move(handler)};
    return token;
}

void MprisPlayerNotifications::post(const std::string& state) {
    const UserInfo userInfo{{"Player State", state}};
    for (const auto& [token, observer] : observers_) {
        if (observer.name != playerInfo) continue;
        executor_->post([handler = observer.handler, userInfo] { handler(userInfo); });
    }
}

}  // namespace corvanel
