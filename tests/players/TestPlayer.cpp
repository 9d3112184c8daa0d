#include "TestPlayer.h"

#include <QDBusMessage>
#include <QDir>
#include <QFileInfo>
#include <QUrl>
#include <cstdlib>
#include <utility>

namespace {

const QString playerInterface = QStringLiteral("org.mpris.MediaPlayer2.Player");

QByteArray absolute(const QByteArray& path) {
    if (path.startsWith('/')) return path;
    return QFile::encodeName(QDir::currentPath()) + '/' + path;
}

}  // namespace

TestPlayer::TestPlayer(QDBusConnection bus, CallJournal& journal,
                       std::unique_ptr<PipeWireOutput> output, QString identity)
    : bus_(std::move(bus)),
      journal_(journal),
      output_(std::move(output)),
      identity_(std::move(identity)) {}

QString TestPlayer::playbackStatus() const {
    switch (status_) {
        case Status::playing:
            return QStringLiteral("Playing");
        case Status::paused:
            return QStringLiteral("Paused");
        case Status::stopped:
            return QStringLiteral("Stopped");
    }
    return {};
}

qlonglong TestPlayer::position() {
    journal(QStringLiteral("Get Position"));
    return positionNow();
}

void TestPlayer::play() {
    arrive(QStringLiteral("Play"));
    if (!metadata_.isEmpty()) changeStatus(Status::playing);
    journal(QStringLiteral("Play"));
}

void TestPlayer::pause() {
    arrive(QStringLiteral("Pause"));
    if (status_ == Status::playing) changeStatus(Status::paused);
    journal(QStringLiteral("Pause"));
}

void TestPlayer::playPause() {
    arrive(QStringLiteral("PlayPause"));
    if (status_ == Status::playing)
        changeStatus(Status::paused);
    else if (!metadata_.isEmpty())
        changeStatus(Status::playing);
    journal(QStringLiteral("PlayPause"));
}

void TestPlayer::stop() {
    arrive(QStringLiteral("Stop"));
    changeStatus(Status::stopped);
    moveTo(0);
    journal(QStringLiteral("Stop"));
}

void TestPlayer::next() {
    arrive(QStringLiteral("Next"));
    journal(QStringLiteral("Next (no next track)"));
}

void TestPlayer::previous() {
    arrive(QStringLiteral("Previous"));
    journal(QStringLiteral("Previous (no previous track)"));
}

void TestPlayer::seek(qlonglong offset) {
    const QString call = QStringLiteral("Seek %1").arg(offset);
    arrive(call);
    if (!metadata_.isEmpty()) {
        qlonglong target = std::max(positionNow() + offset, qlonglong{0});
        if (lengthMicroseconds_ > 0) target = std::min(target, lengthMicroseconds_);
        moveTo(target);
        Q_EMIT seeked(target);
    }
    journal(call);
}

void TestPlayer::setPosition(const QDBusObjectPath& trackId, qlonglong position) {
    const QString call = QStringLiteral("SetPosition %1 %2").arg(trackId.path()).arg(position);
    arrive(call);
    // As MPRIS asks: ignored unless it names the current track and a position within it.
    const auto current = metadata_.value(QStringLiteral("mpris:trackid")).value<QDBusObjectPath>();
    const bool within =
        position >= 0 && (lengthMicroseconds_ == 0 || position <= lengthMicroseconds_);
    if (!metadata_.isEmpty() && current == trackId && within) {
        moveTo(position);
        Q_EMIT seeked(position);
    }
    journal(call);
}

void TestPlayer::openUri(const QString& uri) {
    arrive(QStringLiteral("OpenUri ") + uri);
    const QUrl url(uri);
    if (url.isLocalFile()) {
        open(QFile::encodeName(url.toLocalFile()));
    } else {
        journal(QStringLiteral("OpenUri ") + uri + QStringLiteral(" (not a file: ignored)"));
    }
}

void TestPlayer::raise() {
    arrive(QStringLiteral("Raise"));
    journal(QStringLiteral("Raise"));
}

void TestPlayer::quit() {
    arrive(QStringLiteral("Quit"));
    journal(QStringLiteral("Quit (CanQuit is false: ignored)"));
}

void TestPlayer::open(const QByteArray& path) {
    const QString call = QStringLiteral("Open ") + QString::fromUtf8(path);
    arrive(call);
    const QByteArray file = absolute(path);
    std::shared_ptr<const DecodedTrack> audio = DecodedTrack::decode(file.toStdString());
    QVariantMap metadata;
    metadata.insert(QStringLiteral("mpris:trackid"),
                    QVariant::fromValue(QDBusObjectPath(
                        QStringLiteral("/org/corvanel/TestPlayer/track/%1").arg(tracks_ + 1))));
    metadata.insert(QStringLiteral("xesam:url"),
                    QString::fromLatin1("file://" + file.toPercentEncoding("/")));
    metadata.insert(QStringLiteral("xesam:title"), QFileInfo(QFile::decodeName(file)).fileName());
    if (audio && audio->rate > 0) {
        metadata.insert(QStringLiteral("mpris:length"),
                        qlonglong{audio->fileFrames * 1'000'000 / audio->rate});
    }
    newTrack(std::move(metadata), std::move(audio));
    journal(call + (audio_ ? QString() : QStringLiteral(" (no audio in it)")));
}

void TestPlayer::setMetadata(const QString& trackId, const QString& url, const QString& title) {
    const QString call = QStringLiteral("SetMetadata %1 %2 (title of %3 characters)")
                             .arg(trackId, url.left(200))
                             .arg(title.size());
    arrive(call);
    QVariantMap metadata;
    if (!trackId.isEmpty())
        metadata.insert(QStringLiteral("mpris:trackid"),
                        QVariant::fromValue(QDBusObjectPath(trackId)));
    if (!url.isEmpty()) metadata.insert(QStringLiteral("xesam:url"), url);
    metadata.insert(QStringLiteral("xesam:title"), title);
    newTrack(std::move(metadata), nullptr);
    journal(call);
}

void TestPlayer::vanishOn(const QString& call) {
    arrive(QStringLiteral("VanishOn ") + call);
    vanishOn_ = call;
    journal(QStringLiteral("VanishOn ") + call);
}

void TestPlayer::arrive(const QString& call) {
    if (vanishOn_.isEmpty() || !call.startsWith(vanishOn_)) return;
    journal_.write(call.toStdString() + " | vanishing without an answer");
    std::_Exit(0);
}

void TestPlayer::journal(const QString& call) {
    const double seconds = static_cast<double>(positionNow()) / 1e6;
    journal_.write(call.toStdString() + " | status=" + playbackStatus().toStdString() +
                   " position=" + QString::number(seconds, 'f', 3).toStdString());
}

void TestPlayer::changeStatus(Status status) {
    if (status == status_) return;
    const qlonglong position = positionNow();
    status_ = status;
    moveTo(position);
    if (output_) output_->setActive(status_ == Status::playing);
    announce(playerInterface, {{QStringLiteral("PlaybackStatus"), playbackStatus()}});
}

void TestPlayer::moveTo(qlonglong position) {
    positionBase_ = position;
    positionSince_ = Clock::now();
    if (output_ && audio_)
        output_->seek(static_cast<std::int64_t>(position * audio_->rate / 1'000'000));
}

qlonglong TestPlayer::positionNow() const {
    qlonglong position = positionBase_;
    if (status_ == Status::playing) {
        position +=
            std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - positionSince_)
                .count();
    }
    // The player repeats its one track.
    if (lengthMicroseconds_ > 0) position %= lengthMicroseconds_;
    return position;
}

void TestPlayer::announce(const QString& interface, const QVariantMap& changed) {
    QDBusMessage signal = QDBusMessage::createSignal(
        QString::fromLatin1(objectPath), QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("PropertiesChanged"));
    signal.setArguments({interface, changed, QStringList()});
    bus_.send(signal);
}

void TestPlayer::newTrack(QVariantMap metadata, std::shared_ptr<const DecodedTrack> audio) {
    ++tracks_;
    metadata_ = std::move(metadata);
    audio_ = std::move(audio);
    lengthMicroseconds_ = metadata_.value(QStringLiteral("mpris:length")).toLongLong();
    positionBase_ = 0;
    positionSince_ = Clock::now();
    if (output_) output_->open(audio_, 0, status_ == Status::playing);
    announce(playerInterface, {{QStringLiteral("Metadata"), metadata_}});
}
