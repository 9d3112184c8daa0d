#pragma once
// The test player's three D-Bus interfaces, each forwarding to the TestPlayer it belongs to:
// org.mpris.MediaPlayer2, org.mpris.MediaPlayer2.Player and the test's own org.corvanel.TestPlayer
// (Open(ay path), SetMetadata(s track id, s url, s title), VanishOn(s call)).
#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QStringList>
#include <QVariantMap>

#include "TestPlayer.h"

class RootAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(QString Identity READ identity)
    Q_PROPERTY(bool CanQuit READ no)
    Q_PROPERTY(bool CanRaise READ no)
    Q_PROPERTY(bool HasTrackList READ no)
    Q_PROPERTY(QStringList SupportedUriSchemes READ uriSchemes)
    Q_PROPERTY(QStringList SupportedMimeTypes READ mimeTypes)

  public:
    explicit RootAdaptor(TestPlayer* player);

    QString identity() const { return player_->identity(); }
    bool no() const { return false; }
    QStringList uriSchemes() const { return {QStringLiteral("file")}; }
    QStringList mimeTypes() const;

  public Q_SLOTS:
    void Raise() { player_->raise(); }
    void Quit() { player_->quit(); }

  private:
    TestPlayer* player_;
};

class PlayerAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ playbackStatus)
    Q_PROPERTY(QString LoopStatus READ loopStatus)
    Q_PROPERTY(double Rate READ one)
    Q_PROPERTY(double MinimumRate READ one)
    Q_PROPERTY(double MaximumRate READ one)
    Q_PROPERTY(bool Shuffle READ no)
    Q_PROPERTY(QVariantMap Metadata READ metadata)
    Q_PROPERTY(double Volume READ one)
    Q_PROPERTY(qlonglong Position READ position)
    Q_PROPERTY(bool CanGoNext READ no)
    Q_PROPERTY(bool CanGoPrevious READ no)
    Q_PROPERTY(bool CanPlay READ yes)
    Q_PROPERTY(bool CanPause READ yes)
    Q_PROPERTY(bool CanSeek READ yes)
    Q_PROPERTY(bool CanControl READ yes)

  public:
    explicit PlayerAdaptor(TestPlayer* player);

    QString playbackStatus() const { return player_->playbackStatus(); }
    QString loopStatus() const { return QStringLiteral("Track"); }
    QVariantMap metadata() const { return player_->metadata(); }
    qlonglong position() const { return player_->position(); }
    double one() const { return 1.0; }
    bool yes() const { return true; }
    bool no() const { return false; }

  public Q_SLOTS:
    void Next() { player_->next(); }
    void Previous() { player_->previous(); }
    void Pause() { player_->pause(); }
    void PlayPause() { player_->playPause(); }
    void Stop() { player_->stop(); }
    void Play() { player_->play(); }
    void Seek(qlonglong offset) { player_->seek(offset); }
    void SetPosition(const QDBusObjectPath& trackId, qlonglong position) {
        player_->setPosition(trackId, position);
    }
    void OpenUri(const QString& uri) { player_->openUri(uri); }

  Q_SIGNALS:
    void Seeked(qlonglong position);

  private:
    TestPlayer* player_;
};

class ControlAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.corvanel.TestPlayer")

  public:
    explicit ControlAdaptor(TestPlayer* player) : QDBusAbstractAdaptor(player), player_(player) {}

  public Q_SLOTS:
    void Open(const QByteArray& path) { player_->open(path); }
    void SetMetadata(const QString& trackId, const QString& url, const QString& title) {
        player_->setMetadata(trackId, url, title);
    }
    void VanishOn(const QString& call) { player_->vanishOn(call); }

  private:
    TestPlayer* player_;
};
