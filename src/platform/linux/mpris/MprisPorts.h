#pragma once
// The Linux ports that stand for the Music app: the script runner, the player notifications and
// the system log, all following the MPRIS player the session bus shows playing, plus the player
// tracking itself for the followed player's name.
#include <QDBusConnection>
#include <memory>

#include "platform/MainExecutor.h"
#include "platform/PlayerNotifications.h"
#include "platform/ScriptRunner.h"
#include "platform/SystemLog.h"
#include "platform/linux/PlaybackStreams.h"
#include "platform/linux/mpris/MprisPlayers.h"

namespace corvanel {

struct MprisPorts {
    std::shared_ptr<ScriptRunner> scripts;
    std::shared_ptr<PlayerNotifications> notifications;
    // The track header journal, answering for the Music process's log.
    std::shared_ptr<SystemLog> systemLog;
    // followedIdentity() and followedChanged: which player is followed.
    std::shared_ptr<MprisPlayers> players;
};

// On the main thread, with the Qt event loop as `executor`'s main thread. `streams` may be null
// (no sound server): a track without a readable local file then has no technicals. Watching
// starts at once.
MprisPorts makeMprisPorts(std::shared_ptr<MainExecutor> executor,
                          std::shared_ptr<const PlaybackStreams> streams,
                          QDBusConnection bus = QDBusConnection::sessionBus());

}  // namespace corvanel
