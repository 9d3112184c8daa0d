#pragma once
// The test player's state and behaviour behind its D-Bus interfaces: the MPRIS root and player
// interfaces, as a music player implements them, and a control interface through which a test
// changes tracks. Every call is written to the call journal with the state after it, so a test
// can check the order in which calls arrived and what the player did. Announces changes with
// PropertiesChanged as players do: a new track with Metadata alone, the status only when it
// changes.
#include <QByteArray>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <chrono>
#include <memory>

#include "CallJournal.h"
#include "DecodedTrack.h"
#include "PipeWireOutput.h"

class TestPlayer final : public QObject {
    Q_OBJECT

  public:
    static constexpr const char* objectPath = "/org/mpris/MediaPlayer2";

    // `output` may be null: the player then plays silently.
    TestPlayer(QDBusConnection bus, CallJournal& journal, std::unique_ptr<PipeWireOutput> output,
               QString identity);

    QString identity() const { return identity_; }
    QString playbackStatus() const;
    QVariantMap metadata() const { return metadata_; }
    qlonglong position();

    // org.mpris.MediaPlayer2.Player
    void play();
    void pause();
    void playPause();
    void stop();
    void next();
    void previous();
    void seek(qlonglong offset);
    void setPosition(const QDBusObjectPath& trackId, qlonglong position);
    void openUri(const QString& uri);
    // org.mpris.MediaPlayer2
    void raise();
    void quit();
    // The test's control: a new track from a file (its name as bytes, which need not be UTF-8);
    // a track that is only metadata (an empty track id or URL is left out; the track id must be
    // an object path); leaving the bus without answering when `call` next arrives.
    void open(const QByteArray& path);
    void setMetadata(const QString& trackId, const QString& url, const QString& title);
    void vanishOn(const QString& call);

  Q_SIGNALS:
    void seeked(qlonglong position);

  private:
    enum class Status { playing, paused, stopped };
    using Clock = std::chrono::steady_clock;

    // Leaves at once, unanswered, when `call` is the one to vanish on.
    void arrive(const QString& call);
    void journal(const QString& call);
    void changeStatus(Status status);
    void moveTo(qlonglong position);
    qlonglong positionNow() const;
    void announce(const QString& interface, const QVariantMap& changed);
    void newTrack(QVariantMap metadata, std::shared_ptr<const DecodedTrack> audio);

    QDBusConnection bus_;
    CallJournal& journal_;
    std::unique_ptr<PipeWireOutput> output_;
    QString identity_;
    Status status_ = Status::stopped;
    QVariantMap metadata_;
    std::shared_ptr<const DecodedTrack> audio_;
    qlonglong lengthMicroseconds_ = 0;
    qlonglong positionBase_ = 0;  // microseconds at positionSince_
    Clock::time_point positionSince_ = Clock::now();
    int tracks_ = 0;
    QString vanishOn_;
};
