#include "platform/qt/LocalWorkspace.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QLockFile>
#include <QProcess>
#include <QStandardPaths>
#include <utility>

#include "platform/qt/DesktopEntries.h"

namespace corvanel {
namespace {

const QByteArray quitRequest = "quit\n";
constexpr int connectMilliseconds = 1000;
// An older copy answers once its event loop runs; a copy still starting up needs a moment.
constexpr int letGoMilliseconds = 10000;
// Copies started together take turns; each turn lasts at most one wait for an older copy.
constexpr int turnMilliseconds = 3 * letGoMilliseconds;
constexpr int claimAttempts = 3;

// A Linux desktop names an application by its desktop entry, as macOS does by its bundle.
bool isDesktopEntry(const QString& path) {
    return path.endsWith(QStringLiteral(".desktop"));
}

}  // namespace

LocalWorkspace::LocalWorkspace(QString socketPath, Actions actions)
    : socketPath_(std::move(socketPath)), actions_(std::move(actions)) {}

LocalWorkspace::~LocalWorkspace() = default;

QString LocalWorkspace::defaultSocketPath() {
    // Qt hands out the runtime folder only when it belongs to this user alone (mode 0700); in a
    // shared folder such as /tmp another user could take the name first.
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) {
        folder = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
        QDir().mkpath(folder);
    }
    return QDir(folder).filePath("corvanel.socket");
}

bool LocalWorkspace::hasApplication(const std::string& path) {
    const QString file = QString::fromStdString(path);
    if (isDesktopEntry(file)) return desktopEntryCommand(file).has_value();
    return QFileInfo::exists(file);
}

bool LocalWorkspace::openApplication(const std::string& path) {
    const QString file = QString::fromStdString(path);
    if (!isDesktopEntry(file)) return QProcess::startDetached(file, {});
    const std::optional<QStringList> command = desktopEntryCommand(file);
    return command && QProcess::startDetached(command->front(), command->mid(1));
}

void LocalWorkspace::activateSelf() {
    if (actions_.activate) actions_.activate();
}

void LocalWorkspace::askOlderCopiesToQuit() {
    // Copies started at the same moment take turns, so that none mistakes the socket another
    // has just made for one left behind by a crash. A lock whose owner died is taken over.
    QLockFile turn(socketPath_ + ".lock");
    const bool ownTurn = turn.tryLock(turnMilliseconds);
    switch (claimSocket(ownTurn)) {
        case Claim::taken:
            acceptQuitRequests();
            return;
        case Claim::heldByAnotherCopy:
            // Two copies must not run side by side: this one gives way.
            qWarning("Corvanel is already running and did not quit when asked; this copy ends.");
            if (actions_.quit)
                QMetaObject::invokeMethod(
                    QCoreApplication::instance(), [quit = actions_.quit] { quit(); },
                    Qt::QueuedConnection);
            return;
        case Claim::impossible:
            qWarning(
                "Corvanel could not listen on %s (%s); other copies will not be asked to "
                "quit.",
                qPrintable(socketPath_), qPrintable(server_->errorString()));
            server_.reset();
            return;
    }
}

LocalWorkspace::Claim LocalWorkspace::claimSocket(bool mayRemoveLeftover) {
    bool answered = false;
    for (int attempt = 0; attempt < claimAttempts; ++attempt) {
        // No socket options: with them Qt binds elsewhere and renames the socket over the name,
        // replacing whatever listens there. A plain bind fails while the name is taken.
        server_ = std::make_unique<QLocalServer>();
        if (server_->listen(socketPath_)) return Claim::taken;
        if (server_->serverError() != QAbstractSocket::AddressInUseError) return Claim::impossible;

        QLocalSocket older;
        older.connectToServer(socketPath_);
        if (older.waitForConnected(connectMilliseconds)) {
            answered = true;
            older.write(quitRequest);
            older.waitForBytesWritten(connectMilliseconds);
            // The older copy lets go of the name, then closes the connection as it quits.
            if (older.state() != QLocalSocket::UnconnectedState &&
                !older.waitForDisconnected(letGoMilliseconds))
                return Claim::heldByAnotherCopy;
        } else if (older.error() == QLocalSocket::ConnectionRefusedError && mayRemoveLeftover) {
            // A copy that crashed leaves its socket behind; nobody answers on it any more.
            QLocalServer::removeServer(socketPath_);
        }
    }
    return answered ? Claim::heldByAnotherCopy : Claim::impossible;
}

bool LocalWorkspace::isListening() const {
    return server_ && server_->isListening();
}

void LocalWorkspace::acceptQuitRequests() {
    QObject::connect(server_.get(), &QLocalServer::newConnection, server_.get(), [this] {
        while (QLocalSocket* newer = server_->nextPendingConnection()) {
            newer->setReadBufferSize(longestRequest);
            QObject::connect(newer, &QLocalSocket::disconnected, newer, &QObject::deleteLater);
            QObject::connect(newer, &QLocalSocket::readyRead, newer, [this, newer] {
                if (!newer->canReadLine()) {
                    if (newer->bytesAvailable() >= longestRequest) newer->abort();
                    return;
                }
                if (newer->readLine(longestRequest) != quitRequest) {
                    newer->abort();
                    return;
                }
                // Let go of the name first so the newer copy can take it at once.
                server_->close();
                newer->disconnectFromServer();
                if (actions_.quit) actions_.quit();
            });
        }
    });
}

}  // namespace corvanel
