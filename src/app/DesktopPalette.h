#pragma once
// The desktop's colours beside the shell's own. The shell draws its windows on a dark material
// whatever the desktop looks like, so it replaces the application palette; the tray icon sits
// on the desktop's panel instead and must take the desktop's text colour. This keeps the palette
// the platform theme gave the application before the shell replaced it.
//
// Qt tells an application about a new desktop palette only by replacing the application palette
// (a platform theme that hands running applications a new colour scheme does so): that palette
// becomes the desktop's and the shell's goes back on. A theme change that leaves the
// application's palette alone cannot be told from here; it is followed at the next start.
#include <QObject>
#include <QPalette>

#include "app/TrayIcon.h"
#include "platform/Signal.h"

namespace corvanel {

class DesktopPalette final : public QObject {
  public:
    // Keeps the application palette as it is now as the desktop's and puts `shellPalette` on the
    // application in its place.
    explicit DesktopPalette(const QPalette& shellPalette);
    ~DesktopPalette() override;
    DesktopPalette(const DesktopPalette&) = delete;
    DesktopPalette& operator=(const DesktopPalette&) = delete;

    // The desktop's text colour for the icon's ink, its window colour for the halo.
    TrayIconColours trayColours() const;

    // Emitted after the desktop's colours changed.
    Signal<> changed;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool isShellPalette(const QPalette& palette) const;

    QPalette shell_;
    QPalette desktop_;
};

}  // namespace corvanel
