#pragma once
// The menu-bar (tray) item as the shell sees it, so each platform can give it a native body:
// a StatusNotifierItem of our own, QSystemTrayIcon or a small window of our own on Linux, an
// NSStatusItem on macOS.
#include <QImage>
#include <QRect>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace corvanel {

class StatusItem {
  public:
    virtual ~StatusItem() = default;

    // The label image for the engine's menu-bar title and the analyzer's levels (absent while
    // the live image is off): the whole label as a template image (only its alpha is used; the
    // platform supplies the colour), drawn at scale 2, unless the item draws its own.
    virtual QImage labelImage(const QString& title,
                              const std::optional<std::vector<float>>& levels) const;
    // Shows an image made by labelImage().
    virtual void setLabelImage(const QImage& image) = 0;
    // The whole title as text, each time it changes, for an item that shows it apart from its
    // image (a tooltip, a text label beside a tray icon). The template label image carries it
    // already.
    virtual void setTitle(const QString& title) { (void)title; }
    // Present in the status area or not (the one-time re-insertion toggles it).
    virtual void setInserted(bool inserted) = 0;
    // Where the item is on screen, to open the popup below it; empty when the platform does not
    // say.
    virtual QRect geometry() const = 0;

    // Called on the main thread when the user clicks the item.
    std::function<void()> onActivated;
    // Called when the item's own drawing changed (the desktop's colours), so that the label is
    // drawn again.
    std::function<void()> onAppearanceChanged;
    // Called when the user closes the item itself (a label window of our own): without it the
    // application would run on with nothing on screen, so it quits.
    std::function<void()> onQuitRequested;
};

}  // namespace corvanel
