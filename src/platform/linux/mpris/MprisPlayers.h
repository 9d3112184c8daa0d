#pragma once
// The MPRIS players on a session bus, and the one Corvanel follows: the player that is playing,
// or of several the one that most recently started; when none plays, the one followed before
// (or, once that one has gone, the one that played last). Without any player it waits quietly.
//
// Everything is known from signals (NameOwnerChanged, PropertiesChanged, Seeked) and from
// asynchronous reads (ListNames, GetAll, Position, the owner's process id), so every question is
// answered at once from what is known, and commands are sent without waiting for the player.
// Lives on the main thread, whose event loop delivers the bus's signals and replies.
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "platform/MainExecutor.h"
#include "platform/Signal.h"
#include "platform/linux/mpris/MprisPlayer.h"

namespace corvanel {

class MprisPlayers final : public QObject {
    Q_OBJECT

  public:
    struct PlaybackStart {
        std::string url;  // the track's xesam:url; empty when the player sent none
        WallTime time;
    };

    // Starts watching at once; the players already on the bus are found asynchronously.
    MprisPlayers(QDBusConnection bus, std::shared_ptr<MainExecutor> executor);
    ~MprisPlayers() override;
    MprisPlayers(const MprisPlayers&) = delete;
    MprisPlayers& operator=(const MprisPlayers&) = delete;

    // The followed player, or null. Valid until control returns to the event loop.
    const MprisPlayer* followed() const;
    // The followed player's Identity (its bus name's last part until the Identity is read).
    std::optional<std::string> followedIdentity() const;
    // The followed player's position now in seconds, from the last one read; each call also asks
    // the player for a fresh one, for the calls after it.
    std::optional<double> followedPosition();

    // Commands to the followed player, sent without waiting; whether there was one to send to.
    bool play();
    bool pause();
    // To the start of the track: SetPosition to 0 with the track id, or without a usable track id
    // a Seek back past the start; the position is read afresh right after it.
    bool rewind();

    // The followed player changed, or its Identity did.
    Signal<> followedChanged;
    // The followed player started a track: it began playing, it moved to a new track (new track
    // id or URL) while playing, or it became the followed player while playing.
    Signal<PlaybackStart> playbackStarted;
    // The followed player paused or stopped.
    Signal<PlaybackStatus> playbackHalted;
    // The followed player's track URL, whenever it has a new track or a player is newly followed.
    Signal<std::string> trackChanged;

  private Q_SLOTS:
    void onNameOwnerChanged(const QDBusMessage& message);
    void onPropertiesChanged(const QDBusMessage& message);
    void onSeeked(const QDBusMessage& message);

  private:
    // Qt hands a reply to the main thread a turn later than a signal that followed it on the
    // bus, so a read may come back older than what was signalled meanwhile: counting signals
    // tells which values a reply may still set.
    struct Record {
        MprisPlayer player;
        std::set<QString> names;  // its well-known names (a process owning several is one player)
        std::uint64_t signalCount = 0;
        std::map<QString, std::uint64_t> signalledAt;  // player property -> signal count
        bool positionReading = false;

        // Marks `property` as signalled now.
        void signalled(const QString& property) { signalledAt[property] = signalCount; }
        // Whether a reply to a read asked when `asked` signals had come is still news about
        // `property`.
        bool newsAbout(const QString& property, std::uint64_t asked) const {
            const auto found = signalledAt.find(property);
            return found == signalledAt.end() || found->second <= asked;
        }
    };
    // What was last announced about the followed player, to tell what has changed since.
    struct Announced {
        QString owner;
        std::optional<std::string> identity;
        std::optional<PlaybackStatus> status;
        TrackIdentity track;
    };

    struct Subscription;
    static const Subscription subscriptions[];

    void listPlayers();
    void addName(const QString& name, const QString& owner);
    void removeName(const QString& name, const QString& owner);
    void fetch(const QString& owner);
    void readPosition(const QString& owner);
    void applyPlayerProperties(const QString& owner, const QVariantMap& changed);
    void command(const QString& member, const QVariantList& arguments);
    // Sends `message` without waiting; its reply, or its failure (an error, no answer within the
    // time limit), is handed to the main thread later.
    void call(const QDBusMessage& message, std::function<void(const QDBusMessage&)> onReply,
              std::function<void()> onFailure = {});
    Record* find(const QString& owner);
    QString choose() const;
    // Chooses the followed player again and emits what changed about it.
    void update();

    QDBusConnection bus_;
    std::shared_ptr<MainExecutor> executor_;
    std::map<QString, Record> players_;  // by the owner's unique bus name
    QString followed_;
    Announced announced_;
    std::uint64_t order_ = 0;
};

}  // namespace corvanel
