#pragma once
// The application's login item on a freedesktop desktop: an entry in the user's autostart
// folder that starts this executable when the session begins.
#include <QString>

#include "platform/LoginItems.h"

namespace corvanel {

class XdgAutostart final : public LoginItems {
  public:
    // `entryPath`: the autostart entry (…/autostart/corvanel.desktop); `executable`: what it runs.
    XdgAutostart(QString entryPath, QString executable);
    // The user's autostart folder and this process's executable.
    static XdgAutostart forCurrentUser();

    LoginItemStatus status() override;
    std::optional<std::string> registerApp() override;
    std::optional<std::string> unregisterApp() override;

  private:
    QString entryPath_;
    QString executable_;
};

}  // namespace corvanel
