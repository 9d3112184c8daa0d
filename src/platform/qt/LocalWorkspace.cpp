#include "platform/qt/LocalWorkspace.h"

#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QStandardPaths>
#include <utility>

namespace corvanel {
namespace {

const QByteArray quitRequest = "quit\n";
constexpr int handshakeMilliseconds = 3000;

}  // namespace

LocalWorkspace::LocalWorkspace(QString serverName, Actions actions)
    : serverName_(std::move(serverName)), actions_(std::move(actions)) {}

LocalWorkspace::~LocalWorkspace() = default;

QString LocalWorkspace::defaultServerName() {
    const QString user = qEnvironmentVariable("USER", qEnvironmentVariable("USERNAME", "user"));
    return "corvanel-" + user;
}

bool LocalWorkspace::hasApplication(const std::string& path) {
    return QFileInfo::exists(QString::fromStdString(path));
}

bool LocalWorkspace::openApplication(const std::string& path) {
    return QProcess::startDetached(QString::fromStdString(path), {});
}

void LocalWorkspace::activateSelf() {
    if (actions_.activate) actions_.activate();
}

void LocalWorkspace::askOlderCopiesToQuit() {
    QLocalSocket older;
    older.connectToServer(serverName_);
    if (older.waitForConnected(handshakeMilliseconds)) {
        older.write(quitRequest);
        older.waitForBytesWritten(handshakeMilliseconds);
        // The older copy closes the connection as it quits.
        if (older.state() != QLocalSocket::UnconnectedState)
            older.waitForDisconnected(handshakeMilliseconds);
    }
    acceptQuitRequests();
}

bool LocalWorkspace::isListening() const {
    return server_ && server_->isListening();
}

void LocalWorkspace::acceptQuitRequests() {
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server_->listen(serverName_)) {
        // A copy that crashed leaves its socket file behind; nobody answers on it any more.
        QLocalServer::removeServer(serverName_);
        server_->listen(serverName_);
    }
    QObject::connect(server_.get(), &QLocalServer::newConnection, server_.get(), [this] {
        while (QLocalSocket* newer = server_->nextPendingConnection()) {
            QObject::connect(newer, &QLocalSocket::disconnected, newer, &QObject::deleteLater);
            QObject::connect(newer, &QLocalSocket::readyRead, newer, [this, newer] {
                if (!newer->canReadLine() || newer->readLine() != quitRequest) return;
                // Let go of the name first so the newer copy can take it at once.
                server_->close();
                newer->disconnectFromServer();
                if (actions_.quit) actions_.quit();
            });
        }
    });
}

}  // namespace corvanel
