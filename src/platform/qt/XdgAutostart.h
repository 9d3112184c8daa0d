#pragma once
// The application's login item on a freedesktop desktop: an entry in the user's autostart
// folder that starts this program when the session begins.
#include <QString>

#include "platform/LoginItems.h"

namespace corvanel {

class XdgAutostart final : public LoginItems {
  public:
    // How the entry starts the program: its Exec line, and the program named by TryExec, so a
    // desktop skips the entry once that program is removed instead of failing to start it.
    struct Launcher {
        QString exec;
        QString program;
    };

    // `entryPath`: the autostart entry (…/autostart/<application id>.desktop).
    XdgAutostart(QString entryPath, Launcher launcher);
    // The user's autostart folder, and this program as its installed desktop entry starts it.
    static XdgAutostart forCurrentUser();

    // The installed desktop entry's Exec when that entry starts `runningProgram` (the program as
    // installed), else `runningProgram` by its own path (a build folder, an unpacked copy).
    static Launcher launcherFor(const QString& runningProgram, const QString& desktopEntryPath);

    LoginItemStatus status() override;
    std::optional<std::string> registerApp() override;
    std::optional<std::string> unregisterApp() override;

    // An enabled entry that starts another program (this one moved or was installed anew) is
    // rewritten to start this one; entries switched off or absent are left as they are.
    std::optional<std::string> refresh();

  private:
    QByteArray entryText() const;

    QString entryPath_;
    Launcher launcher_;
};

}  // namespace corvanel
