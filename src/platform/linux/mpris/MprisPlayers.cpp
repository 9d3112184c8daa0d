#include "platform/linux/mpris/MprisPlayers.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <algorithm>
#include <utility>

#include "platform/linux/mpris/MprisValues.h"

namespace corvanel {
namespace {

const QString busService = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");
const QString namePrefix = QStringLiteral("org.mpris.MediaPlayer2.");
const QString objectPath = QStringLiteral("/org/mpris/MediaPlayer2");
const QString rootInterface = QStringLiteral("org.mpris.MediaPlayer2");
const QString playerInterface = QStringLiteral("org.mpris.MediaPlayer2.Player");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

// A player that does not answer within this is treated as one that never will (its reply is
// dropped); nothing waits for it meanwhile.
constexpr int replyTimeoutMs = 5000;
// An Identity is a name to show, not a text to keep whole.
constexpr qsizetype identityLimit = 120;

// Without a usable track id, a Seek by this much more than the position reaches the start (a
// player clamps a position before the start to 0).
constexpr std::int64_t rewindMarginMicroseconds = 1'000'000;
constexpr std::int64_t unknownPositionRewindMicroseconds = 24LL * 3600 * 1'000'000;
const std::string noTrack = "/org/mpris/MediaPlayer2/TrackList/NoTrack";

std::string shortIdentity(const QString& identity) {
    QString shown = identity.left(identityLimit);
    if (!shown.isEmpty() && shown.back().isHighSurrogate()) shown.chop(1);
    return shown.toStdString();
}

}  // namespace

// The signals followed, from any sender: naming a well-known sender makes Qt ask the bus for its
// owner and wait for the answer.
struct MprisPlayers::Subscription {
    const QString& path;
    const QString& interface;
    const char* member;
    const char* slot;
};

const MprisPlayers::Subscription MprisPlayers::subscriptions[] = {
    {busPath, busService, "NameOwnerChanged", SLOT(onNameOwnerChanged(QDBusMessage))},
    {objectPath, propertiesInterface, "PropertiesChanged", SLOT(onPropertiesChanged(QDBusMessage))},
    {objectPath, playerInterface, "Seeked", SLOT(onSeeked(QDBusMessage))},
};

MprisPlayers::MprisPlayers(QDBusConnection bus, std::shared_ptr<MainExecutor> executor)
    : bus_(std::move(bus)), executor_(std::move(executor)) {
    for (const Subscription& signal : subscriptions) {
        bus_.connect(QString(), signal.path, signal.interface, QLatin1String(signal.member), this,
                     signal.slot);
    }
    listPlayers();
}

MprisPlayers::~MprisPlayers() {
    for (const Subscription& signal : subscriptions) {
        bus_.disconnect(QString(), signal.path, signal.interface, QLatin1String(signal.member),
                        this, signal.slot);
    }
}

const MprisPlayer* MprisPlayers::followed() const {
    const auto found = players_.find(followed_);
    return found == players_.end() ? nullptr : &found->second.player;
}

std::optional<std::string> MprisPlayers::followedIdentity() const {
    const MprisPlayer* player = followed();
    if (!player) return std::nullopt;
    if (!player->identity.empty()) return player->identity;
    return player->busName.substr(static_cast<std::size_t>(namePrefix.size()));
}

std::optional<double> MprisPlayers::followedPosition() {
    Record* record = find(followed_);
    if (!record) return std::nullopt;
    if (!record->positionReading) readPosition(followed_);
    return record->player.positionSeconds(executor_->monotonicNow());
}

bool MprisPlayers::play() {
    if (!followed()) return false;
    command(QStringLiteral("Play"), {});
    return true;
}

bool MprisPlayers::pause() {
    if (!followed()) return false;
    command(QStringLiteral("Pause"), {});
    return true;
}

bool MprisPlayers::rewind() {
    const MprisPlayer* player = followed();
    if (!player) return false;
    const std::string& trackId = player->track.trackId;
    if (MprisValues::isObjectPath(trackId) && trackId != noTrack) {
        command(QStringLiteral("SetPosition"),
                {QVariant::fromValue(QDBusObjectPath(QString::fromStdString(trackId))),
                 QVariant::fromValue(qlonglong{0})});
    } else {
        const auto position = player->positionSeconds(executor_->monotonicNow());
        // A position past a day is no track's: the day's rewind covers it too.
        const std::int64_t back =
            position ? static_cast<std::int64_t>(std::clamp(*position, 0.0, 86400.0) * 1e6) +
                           rewindMarginMicroseconds
                     : unknownPositionRewindMicroseconds;
        command(QStringLiteral("Seek"), {QVariant::fromValue(qlonglong{-back})});
    }
    // Sent after the command on the same connection, so the player answers it after rewinding.
    readPosition(followed_);
    return true;
}

void MprisPlayers::onNameOwnerChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (message.service() != busService || arguments.size() != 3) return;
    const QString name = arguments[0].toString();
    const QString oldOwner = arguments[1].toString();
    const QString newOwner = arguments[2].toString();
    if (name.startsWith(QLatin1Char(':')) && newOwner.isEmpty()) {
        // The process left the bus: every name it owned goes with it.
        players_.erase(name);
    } else if (name.startsWith(namePrefix)) {
        if (!oldOwner.isEmpty()) removeName(name, oldOwner);
        if (!newOwner.isEmpty()) addName(name, newOwner);
    }
    update();
}

void MprisPlayers::onPropertiesChanged(const QDBusMessage& message) {
    Record* record = find(message.service());
    const QVariantList arguments = message.arguments();
    if (!record || arguments.size() < 2) return;
    const QString interface = arguments[0].toString();
    const QVariantMap changed = MprisValues::dictionaryOf(arguments[1]);
    const QStringList invalidated =
        arguments.size() > 2 ? MprisValues::stringListOf(arguments[2]) : QStringList();
    if (interface == rootInterface) {
        if (const auto identity = changed.find(QStringLiteral("Identity"));
            identity != changed.end() && identity->metaType() == QMetaType::fromType<QString>())
            record->player.identity = shortIdentity(identity->toString());
        else if (invalidated.contains(QStringLiteral("Identity")))
            fetch(message.service());
    } else if (interface == playerInterface) {
        ++record->signalCount;
        for (auto property = changed.keyBegin(); property != changed.keyEnd(); ++property)
            record->signalled(*property);
        applyPlayerProperties(message.service(), changed);
        if (invalidated.contains(QStringLiteral("PlaybackStatus")) ||
            invalidated.contains(QStringLiteral("Metadata")))
            fetch(message.service());
    }
    update();
}

void MprisPlayers::onSeeked(const QDBusMessage& message) {
    Record* record = find(message.service());
    const QVariantList arguments = message.arguments();
    if (!record || arguments.isEmpty()) return;
    if (const auto position = MprisValues::integerOf(arguments[0])) {
        ++record->signalCount;
        record->signalled(QStringLiteral("Position"));
        record->player.positionMicroseconds = *position;
        record->player.positionTime = executor_->monotonicNow();
    }
}

void MprisPlayers::listPlayers() {
    call(QDBusMessage::createMethodCall(busService, busPath, busService,
                                        QStringLiteral("ListNames")),
         [this](const QDBusMessage& reply) {
             if (reply.arguments().isEmpty()) return;
             for (const QString& name : MprisValues::stringListOf(reply.arguments()[0])) {
                 if (!name.startsWith(namePrefix)) continue;
                 QDBusMessage owner = QDBusMessage::createMethodCall(
                     busService, busPath, busService, QStringLiteral("GetNameOwner"));
                 owner.setArguments({name});
                 call(owner, [this, name](const QDBusMessage& ownerReply) {
                     if (ownerReply.arguments().isEmpty()) return;
                     addName(name, ownerReply.arguments()[0].toString());
                     update();
                 });
             }
         });
}

void MprisPlayers::addName(const QString& name, const QString& owner) {
    if (owner.isEmpty()) return;
    if (Record* record = find(owner)) {
        record->names.insert(name);
        return;
    }
    Record& record = players_[owner];
    record.names.insert(name);
    record.player.busName = name.toStdString();
    record.player.seen = ++order_;
    fetch(owner);
    readPosition(owner);
    QDBusMessage processID = QDBusMessage::createMethodCall(
        busService, busPath, busService, QStringLiteral("GetConnectionUnixProcessID"));
    processID.setArguments({owner});
    call(processID, [this, owner](const QDBusMessage& reply) {
        Record* found = find(owner);
        if (!found || reply.arguments().isEmpty()) return;
        found->player.processID = MprisValues::integerOf(reply.arguments()[0]);
    });
}

void MprisPlayers::removeName(const QString& name, const QString& owner) {
    Record* record = find(owner);
    if (!record) return;
    record->names.erase(name);
    if (record->names.empty()) players_.erase(owner);
}

void MprisPlayers::fetch(const QString& owner) {
    const Record* record = find(owner);
    if (!record) return;
    QDBusMessage root = QDBusMessage::createMethodCall(owner, objectPath, propertiesInterface,
                                                       QStringLiteral("GetAll"));
    root.setArguments({rootInterface});
    call(root, [this, owner](const QDBusMessage& reply) {
        Record* found = find(owner);
        if (!found || reply.arguments().isEmpty()) return;
        const QVariantMap properties = MprisValues::dictionaryOf(reply.arguments()[0]);
        const QVariant identity = properties.value(QStringLiteral("Identity"));
        if (identity.metaType() == QMetaType::fromType<QString>())
            found->player.identity = shortIdentity(identity.toString());
        update();
    });
    QDBusMessage player = QDBusMessage::createMethodCall(owner, objectPath, propertiesInterface,
                                                         QStringLiteral("GetAll"));
    player.setArguments({playerInterface});
    call(player, [this, owner, asked = record->signalCount](const QDBusMessage& reply) {
        Record* found = find(owner);
        if (!found || reply.arguments().isEmpty()) return;
        QVariantMap properties = MprisValues::dictionaryOf(reply.arguments()[0]);
        for (const auto& [property, signalled] : found->signalledAt) {
            if (!found->newsAbout(property, asked)) properties.remove(property);
        }
        applyPlayerProperties(owner, properties);
        update();
    });
}

void MprisPlayers::readPosition(const QString& owner) {
    Record* record = find(owner);
    if (!record) return;
    record->positionReading = true;
    QDBusMessage get = QDBusMessage::createMethodCall(owner, objectPath, propertiesInterface,
                                                      QStringLiteral("Get"));
    get.setArguments({playerInterface, QStringLiteral("Position")});
    call(
        get,
        [this, owner, asked = record->signalCount](const QDBusMessage& reply) {
            Record* found = find(owner);
            if (!found) return;
            found->positionReading = false;
            if (reply.arguments().isEmpty() || !found->newsAbout(QStringLiteral("Position"), asked))
                return;
            if (const auto position = MprisValues::integerOf(reply.arguments()[0])) {
                found->player.positionMicroseconds = *position;
                found->player.positionTime = executor_->monotonicNow();
            }
        },
        [this, owner] {
            // A player that fails one read is asked again at the next.
            if (Record* found = find(owner)) found->positionReading = false;
        });
}

void MprisPlayers::applyPlayerProperties(const QString& owner, const QVariantMap& changed) {
    Record* record = find(owner);
    if (!record) return;
    MprisPlayer& player = record->player;
    const MonoTime now = executor_->monotonicNow();
    bool readAfresh = false;
    if (const auto found = changed.find(QStringLiteral("PlaybackStatus")); found != changed.end()) {
        const auto status = MprisValues::playbackStatusOf(*found);
        if (status != player.status) {
            player.settlePosition(now);
            if (status == PlaybackStatus::playing) player.startedPlaying = ++order_;
            player.status = status;
            readAfresh = true;
        }
    }
    if (const auto found = changed.find(QStringLiteral("Metadata")); found != changed.end()) {
        const TrackIdentity track = MprisValues::trackIdentityOf(MprisValues::dictionaryOf(*found));
        readAfresh = readAfresh || track != player.track;
        player.track = track;
    }
    if (const auto found = changed.find(QStringLiteral("Rate")); found != changed.end()) {
        const auto rate = MprisValues::numberOf(*found);
        player.settlePosition(now);
        player.rate = rate && *rate > 0 && *rate <= 1000 ? *rate : 1;
    }
    if (const auto found = changed.find(QStringLiteral("Position")); found != changed.end()) {
        if (const auto position = MprisValues::integerOf(*found)) {
            player.positionMicroseconds = *position;
            player.positionTime = now;
            readAfresh = false;
        }
    }
    if (readAfresh) readPosition(owner);
}

void MprisPlayers::command(const QString& member, const QVariantList& arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(followed_, objectPath, playerInterface, member);
    message.setArguments(arguments);
    // The reply is not waited for, and an error (a player that has gone) is dropped, as an
    // unanswered script is.
    call(message, [](const QDBusMessage&) {});
}

void MprisPlayers::call(const QDBusMessage& message,
                        std::function<void(const QDBusMessage&)> onReply,
                        std::function<void()> onFailure) {
    // Parent-owned: a watcher still waiting when the tracker goes is deleted with it.
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, replyTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [onReply = std::move(onReply),
             onFailure = std::move(onFailure)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QDBusMessage reply = finished->reply();
                if (reply.type() == QDBusMessage::ReplyMessage)
                    onReply(reply);
                else if (onFailure)
                    onFailure();
            });
}

MprisPlayers::Record* MprisPlayers::find(const QString& owner) {
    const auto found = players_.find(owner);
    return found == players_.end() ? nullptr : &found->second;
}

QString MprisPlayers::choose() const {
    const auto later = [](const MprisPlayer& a, const MprisPlayer& b) {
        return std::pair(a.startedPlaying, a.seen) > std::pair(b.startedPlaying, b.seen);
    };
    const Record* playing = nullptr;
    QString playingOwner;
    for (const auto& [owner, record] : players_) {
        if (record.player.status == PlaybackStatus::playing &&
            (!playing || later(record.player, playing->player))) {
            playing = &record;
            playingOwner = owner;
        }
    }
    if (playing) return playingOwner;
    if (players_.contains(followed_)) return followed_;
    const Record* latest = nullptr;
    QString latestOwner;
    for (const auto& [owner, record] : players_) {
        if (!latest || later(record.player, latest->player)) {
            latest = &record;
            latestOwner = owner;
        }
    }
    return latestOwner;
}

void MprisPlayers::update() {
    followed_ = choose();
    Announced now;
    if (const MprisPlayer* player = followed()) {
        now = {followed_, followedIdentity(), player->status, player->track};
    }
    const Announced before = std::exchange(announced_, now);
    const bool newPlayer = now.owner != before.owner;
    if (newPlayer || now.identity != before.identity) followedChanged.emit();
    if (now.owner.isEmpty()) return;
    const bool newTrack = newPlayer || now.track != before.track;
    if (newTrack) trackChanged.emit(now.track.url);
    if (now.status == PlaybackStatus::playing) {
        if (newTrack || before.status != PlaybackStatus::playing)
            playbackStarted.emit({now.track.url, executor_->wallNow()});
    } else if (now.status && now.status != before.status) {
        playbackHalted.emit(*now.status);
    }
}

}  // namespace corvanel
