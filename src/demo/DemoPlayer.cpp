#include "demo/DemoPlayer.h"

#include <algorithm>

namespace corvanel {
namespace {

// The process whose log messages the scanner reads, and the player notification's name.
constexpr const char* musicProcess = "Music";
constexpr const char* playerInfoNotification = "com.apple.Music.playerInfo";

}  // namespace

std::shared_ptr<DemoPlayer> DemoPlayer::create(Parts parts, std::vector<DemoTrack> playlist) {
    return std::shared_ptr<DemoPlayer>(new DemoPlayer(std::move(parts), std::move(playlist)));
}

DemoPlayer::DemoPlayer(Parts parts, std::vector<DemoTrack> playlist)
    : parts_(std::move(parts)), playlist_(std::move(playlist)) {}

DemoPlayer::~DemoPlayer() {
    stop();
}

void DemoPlayer::start(Seconds delay) {
    stop();
    if (playlist_.empty()) return;
    task_ = spawn(parts_.executor, play(weak_from_this(), delay));
}

void DemoPlayer::stop() {
    if (task_) task_->cancel();
    task_.reset();
}

void DemoPlayer::beginTrack(std::size_t index) {
    const DemoTrack& track = playlist_[index];
    current_ = index;
    parts_.music->setRunning(true);
    parts_.music->setTrack(track.technicals);
    parts_.music->setPosition(0);
    parts_.music->setPlayerState("playing");
    parts_.notifications->post(playerInfoNotification,
                               UserInfo{{"Player State", std::string("Playing")},
                                        {"Name", track.title},
                                        {"Artist", track.artist}});
    if (onTrackStarted) onTrackStarted(index);
}

void DemoPlayer::writeDecoderMessage(const std::string& text) {
    parts_.log->add(musicProcess, text, parts_.executor->wallNow());
}

Task<> DemoPlayer::play(std::weak_ptr<DemoPlayer> weak, Seconds delay) {
    co_await sleepFor(delay);
    for (std::size_t index = 0;; ++index) {
        if (co_await isCancelled()) co_return;
        std::vector<DemoLogMessage> messages;
        Seconds length{};
        {
            const auto self = weak.lock();
            if (!self) co_return;
            const std::size_t track = index % self->playlist_.size();
            self->beginTrack(track);
            messages = self->playlist_[track].decoderMessages;
            length = self->playlist_[track].length;
        }
        std::stable_sort(
            messages.begin(), messages.end(),
            [](const DemoLogMessage& a, const DemoLogMessage& b) { return a.after < b.after; });
        Seconds elapsed{0};
        for (const DemoLogMessage& message : messages) {
            co_await sleepFor(message.after - elapsed);
            elapsed = message.after;
            if (co_await isCancelled()) co_return;
            const auto self = weak.lock();
            if (!self) co_return;
            self->writeDecoderMessage(message.text);
        }
        co_await sleepFor(std::max(Seconds{0}, length - elapsed));
    }
}

}  // namespace corvanel
