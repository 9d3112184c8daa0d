#pragma once
// The script port on Linux: the Music app's fixed script texts translated to the followed MPRIS
// player. Reads are answered at once from what the player tracking knows (the state, the
// position moved on by the time since it was read, the track file's header); commands are sent
// without waiting and their replies dropped, like an unanswered script's. Main thread only.
//
//   player state      "playing", "paused" or "stopped" from PlaybackStatus
//   pause, play       Pause(), Play()
//   read position     the position in seconds as a decimal number
//   rewind            SetPosition(track id, 0), or a Seek back past the start
//   track technicals  "rate|bit rate|kind" from the track file's header; without a readable
//                     local file, "rate||Audio stream" from the player's playback stream on the
//                     sound server; "" when stopped, while the header is being read, or with
//                     neither
//   running Music     whether there is a player to follow
//
// Any other script gets no answer.
#include <memory>
#include <optional>
#include <string>

#include "platform/ScriptRunner.h"
#include "platform/linux/PlaybackStreams.h"
#include "platform/linux/mpris/MprisPlayers.h"
#include "platform/linux/mpris/MprisTrackHeaders.h"

namespace corvanel {

class MprisScriptRunner final : public ScriptRunner {
  public:
    // The streams may be absent (no sound server to ask): files are then the only source.
    MprisScriptRunner(std::shared_ptr<MprisPlayers> players,
                      std::shared_ptr<MprisTrackHeaders> headers,
                      std::shared_ptr<const PlaybackStreams> streams);

    std::optional<std::string> runScript(const std::string& source) override;
    bool isApplicationRunning(const std::string& bundleIdentifier) override;

  private:
    std::string trackTechnicals(const MprisPlayer& player);

    std::shared_ptr<MprisPlayers> players_;
    std::shared_ptr<MprisTrackHeaders> headers_;
    std::shared_ptr<const PlaybackStreams> streams_;
};

}  // namespace corvanel
