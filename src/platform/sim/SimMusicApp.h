#pragma once
// A simulated Music app behind the script port: it answers the player's fixed script texts like
// the real app (state names "playing", "paused", "stopped"; the position as a decimal number;
// the technicals line "rate|bit rate|kind"), can be quit or told to stay silent, and records
// every script it receives. A script sent while it is not running launches it, stopped, as an
// Apple event launches the real app. Scripts it does not know get no answer.
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/MainExecutor.h"
#include "platform/ScriptRunner.h"

namespace corvanel {

class SimMusicApp final : public ScriptRunner {
  public:
    struct Track {
        std::string sampleRate = "44100";  // as the app prints it ("44100", "96000.0")
        std::string bitRate = "256";       // empty when the app knows none
        std::string kind = "AAC audio file";
    };

    // The executor's monotonic clock advances the position while playing.
    explicit SimMusicApp(std::shared_ptr<MainExecutor> executor);

    void setRunning(bool running);
    // While silent every script goes unanswered (automation refused, app hung).
    void setAnswering(bool answering);
    void setTrack(std::optional<Track> track);  // absent: no current track
    // "playing", "paused" or "stopped"; other texts are passed through as the app's answer.
    void setPlayerState(std::string state);
    void setPosition(double seconds);
    // Replaces the answer to the player-state script for the next `count` polls (a slow pause).
    void answerStateFor(int count, std::string state);
    // The next `count` rewinds are answered but have no effect (the app is still buffering).
    void ignoreRewinds(int count);
    // Called after each script is recorded (for one journal shared with other simulations).
    void setScriptObserver(std::function<void(const std::string&)> observer);

    std::string playerState() const;
    double position() const;
    std::vector<std::string> receivedScripts() const;
    void clearReceivedScripts();

    std::optional<std::string> runScript(const std::string& source) override;
    bool isApplicationRunning(const std::string& bundleIdentifier) override;

  private:
    std::optional<std::string> answer(const std::string& source);
    double positionNow() const;
    void settlePosition();

    std::shared_ptr<MainExecutor> executor_;
    mutable std::mutex mutex_;
    bool running_ = true;
    bool answering_ = true;
    std::optional<Track> track_ = Track{};
    std::string state_ = "stopped";
    double position_ = 0;
    MonoTime positionSince_{};
    int overriddenStatePolls_ = 0;
    std::string overriddenState_;
    int ignoredRewinds_ = 0;
    std::vector<std::string> received_;
    std::function<void(const std::string&)> observer_;
};

}  // namespace corvanel
