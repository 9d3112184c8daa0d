#include "platform/sim/SimMusicApp.h"

#include <array>
#include <charconv>
#include <utility>

#include "platform/MusicScripts.h"

namespace corvanel {

SimMusicApp::SimMusicApp(std::shared_ptr<MainExecutor> executor)
    : executor_(std::move(executor)), positionSince_(executor_->monotonicNow()) {}

void SimMusicApp::setRunning(bool running) {
    std::lock_guard lock(mutex_);
    running_ = running;
}

void SimMusicApp::setAnswering(bool answering) {
    std::lock_guard lock(mutex_);
    answering_ = answering;
}

void SimMusicApp::setTrack(std::optional<Track> track) {
    std::lock_guard lock(mutex_);
    track_ = std::move(track);
}

void SimMusicApp::setPlayerState(std::string state) {
    std::lock_guard lock(mutex_);
    settlePosition();
    state_ = std::move(state);
}

void SimMusicApp::setPosition(double seconds) {
    std::lock_guard lock(mutex_);
    position_ = seconds;
    positionSince_ = executor_->monotonicNow();
}

void SimMusicApp::answerStateFor(int count, std::string state) {
    std::lock_guard lock(mutex_);
    overriddenStatePolls_ = count;
    overriddenState_ = std::move(state);
}

void SimMusicApp::ignoreRewinds(int count) {
    std::lock_guard lock(mutex_);
    ignoredRewinds_ = count;
}

void SimMusicApp::setScriptObserver(std::function<void(const std::string&)> observer) {
    std::lock_guard lock(mutex_);
    observer_ = std::move(observer);
}

std::string SimMusicApp::playerState() const {
    std::lock_guard lock(mutex_);
    return state_;
}

double SimMusicApp::position() const {
    std::lock_guard lock(mutex_);
    return positionNow();
}

std::vector<std::string> SimMusicApp::receivedScripts() const {
    std::lock_guard lock(mutex_);
    return received_;
}

void SimMusicApp::clearReceivedScripts() {
    std::lock_guard lock(mutex_);
    received_.clear();
}

std::optional<std::string> SimMusicApp::runScript(const std::string& source) {
    std::optional<std::string> reply;
    std::function<void(const std::string&)> observer;
    {
        std::lock_guard lock(mutex_);
        received_.push_back(source);
        observer = observer_;
        // Like an Apple event, a script to the app when it is not running launches it.
        if (!running_) {
            running_ = true;
            settlePosition();
            state_ = "stopped";
        }
        if (answering_) reply = answer(source);
    }
    if (observer) observer(source);
    return reply;
}

bool SimMusicApp::isApplicationRunning(const std::string& bundleIdentifier) {
    std::lock_guard lock(mutex_);
    return running_ && bundleIdentifier == MusicScripts::musicBundleIdentifier;
}

double SimMusicApp::positionNow() const {
    if (state_ != "playing") return position_;
    const Seconds played = executor_->monotonicNow() - positionSince_;
    return position_ + played.count();
}

void SimMusicApp::settlePosition() {
    position_ = positionNow();
    positionSince_ = executor_->monotonicNow();
}

std::optional<std::string> SimMusicApp::answer(const std::string& source) {
    if (source == MusicScripts::playerState) {
        if (overriddenStatePolls_ > 0) {
            --overriddenStatePolls_;
            return overriddenState_;
        }
        return state_;
    }
    if (source == MusicScripts::pause) {
        if (state_ == "playing") {
            settlePosition();
            state_ = "paused";
        }
        return std::string();
    }
    if (source == MusicScripts::play) {
        if (!track_) return std::string();
        settlePosition();
        state_ = "playing";
        return std::string();
    }
    if (source == MusicScripts::readPosition) {
        std::array<char, 64> text{};
        const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(),
                                                positionNow(), std::chars_format::fixed, 3);
        if (error != std::errc{}) return std::nullopt;
        return std::string(text.data(), end);
    }
    if (source == MusicScripts::rewind) {
        if (ignoredRewinds_ > 0) {
            --ignoredRewinds_;
            return std::string();
        }
        position_ = 0;
        positionSince_ = executor_->monotonicNow();
        return std::string();
    }
    if (source == MusicScripts::trackTechnicals) {
        if (state_ == "stopped" || !track_) return std::string();
        return track_->sampleRate + "|" + track_->bitRate + "|" + track_->kind;
    }
    return std::nullopt;
}

}  // namespace corvanel
