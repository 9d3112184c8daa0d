#pragma once
// Demo mode's Music app at work: plays the playlist in a loop on the main executor. Each track
// becomes the simulated app's current track, the app posts its "Playing" player notification,
// and its decoder messages appear in the simulated system log at their moments after the start.
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "demo/DemoPlaylist.h"
#include "platform/Task.h"
#include "platform/sim/SimMusicApp.h"
#include "platform/sim/SimPlayerNotifications.h"
#include "platform/sim/SimSystemLog.h"

namespace corvanel {

class DemoPlayer : public std::enable_shared_from_this<DemoPlayer> {
  public:
    struct Parts {
        std::shared_ptr<MainExecutor> executor;
        std::shared_ptr<SimMusicApp> music;
        std::shared_ptr<SimSystemLog> log;
        std::shared_ptr<SimPlayerNotifications> notifications;
    };

    static std::shared_ptr<DemoPlayer> create(Parts parts, std::vector<DemoTrack> playlist);
    ~DemoPlayer();

    // Starts the first track after `delay`; the playlist repeats until stop().
    void start(Seconds delay);
    void stop();

    // The track playing now (its index in the playlist), if any.
    std::optional<std::size_t> currentTrack() const { return current_; }
    // Called when a track starts, with its index.
    std::function<void(std::size_t)> onTrackStarted;

  private:
    DemoPlayer(Parts parts, std::vector<DemoTrack> playlist);
    void beginTrack(std::size_t index);
    void writeDecoderMessage(const std::string& text);
    static Task<> play(std::weak_ptr<DemoPlayer> weak, Seconds delay);

    Parts parts_;
    std::vector<DemoTrack> playlist_;
    std::optional<std::size_t> current_;
    std::optional<TaskHandle> task_;
};

}  // namespace corvanel
