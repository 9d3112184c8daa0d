#include "app/linux/LinuxPlatformPorts.h"

#include <QDBusConnection>
#include <QDBusError>
#include <variant>

#include "platform/linux/OutputWithoutRateControl.h"
#include "platform/linux/mpris/MprisPorts.h"
#include "platform/linux/pipewire/PipeWireOutput.h"

namespace corvanel {
namespace {

// The followed MPRIS player under the engine's port. A player is announced once its own name
// (Identity) has arrived, not under the bus name that stands in for it until then.
class MprisFollowedPlayer final : public FollowedPlayer {
  public:
    explicit MprisFollowedPlayer(std::shared_ptr<MprisPlayers> players)
        : players_(std::move(players)), announced_(identity()) {
        relay_ = players_->followedChanged.connect([this] {
            const MprisPlayer* followed = players_->followed();
            if (followed && followed->identity.empty()) return;
            const std::optional<std::string> now = identity();
            if (now == announced_) return;
            announced_ = now;
            changed.emit();
        });
    }

    std::optional<std::string> identity() const override { return players_->followedIdentity(); }

  private:
    std::shared_ptr<MprisPlayers> players_;
    std::optional<std::string> announced_;
    Connection relay_;
};

const QString listensNote = QStringLiteral(
    "Listens to what your computer plays through the sound server — output only, never the "
    "microphone. Analyzed live, never recorded.");

}  // namespace

LinuxPlatformPorts makeLinuxPlatformPorts(std::shared_ptr<MainExecutor> executor,
                                          std::shared_ptr<ProcessTapHost> taps) {
    LinuxPlatformPorts result;
    PlatformPorts& ports = result.ports;
    ports.executor = executor;
    ports.taps = std::move(taps);
    result.privacyNote = listensNote;

    std::shared_ptr<const PlaybackStreams> streams;
    auto output = connectPipeWireOutput(executor);
    if (auto* connected = std::get_if<PipeWireOutput>(&output)) {
        ports.audio = connected->audio;
        streams = connected->playbackStreams;
    } else {
        ports.audio = std::make_shared<OutputWithoutRateControl>();
        result.notices.push_back("Changing the output rate needs PipeWire (" +
                                 std::get<std::string>(output) + "); the meters still work");
        result.privacyNote += QStringLiteral(" Changing the output rate needs PipeWire.");
    }

    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        result.notices.push_back("No session bus (" + bus.lastError().message().toStdString() +
                                 "): music players cannot be followed");
    MprisPorts mpris = makeMprisPorts(executor, streams, bus);
    ports.scripts = std::move(mpris.scripts);
    ports.notifications = std::move(mpris.notifications);
    ports.systemLog = std::move(mpris.systemLog);
    ports.player = std::make_shared<MprisFollowedPlayer>(std::move(mpris.players));
    return result;
}

}  // namespace corvanel
