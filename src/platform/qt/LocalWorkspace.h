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

    // The longest request a copy sends; a connection that sends more without ending its line
    // is dropped, so a stray client cannot make this copy read without end.
    static constexpr qint64 longestRequest = 64;

    // `socketPath`: the absolute path of the socket every copy of the application shares, in a
    // folder where only this user can create names.
    LocalWorkspace(QString socketPath, Actions actions);
    ~LocalWorkspace() override;

    bool hasApplication(const std::string& path) override;
    bool openApplication(const std::string& path) override;
    void activateSelf() override;
    void askOlderCopiesToQuit() override;

    bool isListening() const;
    // The socket in the user's runtime folder, or in the user's cache folder where there is no
    // runtime folder of the user's own.
    static QString defaultSocketPath();

  private:
    enum class Claim { taken, heldByAnotherCopy, impossible };
    Claim claimSocket(bool mayRemoveLeftover);
    void acceptQuitRequests();

    QString socketPath_;
    Actions actions_;
    std::unique_ptr<QLocalServer> server_;
};

}  // namespace corvanel
