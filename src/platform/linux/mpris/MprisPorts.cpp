#include "platform/linux/mpris/MprisPorts.h"

#include <chrono>
#include <utility>

#include "platform/linux/mpris/MprisPlayerNotifications.h"
#include "platform/linux/mpris/MprisScriptRunner.h"
#include "platform/linux/mpris/MprisTrackHeaders.h"
#include "platform/linux/mpris/TrackHeaderJournal.h"
#include "switching/LogScanner.h"

namespace corvanel {

MprisPorts makeMprisPorts(std::shared_ptr<MainExecutor> executor,
                          std::shared_ptr<const PlaybackStreams> streams, QDBusConnection bus) {
    auto players = std::make_shared<MprisPlayers>(std::move(bus), executor);
    // The engine reads the Music process's log; here that process is the followed player.
    auto journal = std::make_shared<TrackHeaderJournal>(
        LogScanner::musicProcess, [weak = std::weak_ptr<MainExecutor>(executor)] {
            const auto target = weak.lock();
            return target ? target->wallNow() : std::chrono::system_clock::now();
        });
    auto headers = MprisTrackHeaders::create(executor, *players, journal);
    MprisPorts ports;
    ports.scripts =
        std::make_shared<MprisScriptRunner>(players, std::move(headers), std::move(streams));
    ports.notifications = std::make_shared<MprisPlayerNotifications>(executor, *players);
    ports.systemLog = std::move(journal);
    ports.players = std::move(players);
    return ports;
}

}  // namespace corvanel
