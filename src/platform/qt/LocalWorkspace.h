#pragma once
// The Workspace port on a desktop without NSWorkspace: applications are files, and the single
// instance is kept through a per-user local socket. The newest copy wins: it asks the copy that
// listens on the socket to quit, waits for it to let go, then listens itself.
#include <QLocalServer>
#include <QString>
#include <functional>
#include <memory>

#include "platform/Workspace.h"

namespace corvanel {

class LocalWorkspace final : public Workspace {
  public:
    struct Actions {
        std::function<void()> quit;      // a newer copy asked this one to quit
        std::function<void()> activate;  // bring this application's windows to the front
    };

    // `serverName`: the socket every copy of the application shares (one per user).
    LocalWorkspace(QString serverName, Actions actions);
    ~LocalWorkspace() override;

    bool hasApplication(const std::string& path) override;
    bool openApplication(const std::string& path) override;
    void activateSelf() override;
    void askOlderCopiesToQuit() override;

    bool isListening() const;
    static QString defaultServerName();

  private:
    void acceptQuitRequests();

    QString serverName_;
    Actions actions_;
    std::unique_ptr<QLocalServer> server_;
};

}  // namespace corvanel
