#pragma once
// The menu-bar (tray) item as the shell sees it, so each platform can give it a native body:
// QSystemTrayIcon (or a small window of our own) on Linux, an NSStatusItem on macOS.
#include <QImage>
#include <QRect>
#include <functional>

namespace corvanel {

class StatusItem {
  public:
    virtual ~StatusItem() = default;

    // A template image: only its alpha is used; the platform supplies the colour. Drawn at
    // scale 2 (devicePixelRatio 2).
    virtual void setLabelImage(const QImage& templateImage) = 0;
    // Present in the status area or not (the one-time re-insertion toggles it).
    virtual void setInserted(bool inserted) = 0;
    // Where the item is on screen, to open the popup below it; empty when the platform does not
    // say.
    virtual QRect geometry() const = 0;

    // Called on the main thread when the user clicks the item.
    std::function<void()> onActivated;
    // Called when the user closes the item itself (a label window of our own): without it the
    // application would run on with nothing on screen, so it quits.
    std::function<void()> onQuitRequested;
};

}  // namespace corvanel
