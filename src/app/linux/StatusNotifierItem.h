#pragma once
// The status item as a StatusNotifierItem of our own on the session bus, where a tray host shows
// such items (KDE Plasma, GNOME with the AppIndicator extension, most panels of other
// desktops). QSystemTrayIcon speaks the same protocol but has no place for text, so this one
// exists: besides the square icon of TrayIcon.h and the tooltip it carries the whole title as the
// text label that hosts following the Ayatana extension show beside the icon.
//
// The item goes on the bus under its own name at once and registers with the host's watcher
// (org.kde.StatusNotifierWatcher) when it is inserted, and again whenever a watcher takes that
// name (the desktop shell restarted). Nothing here waits for a reply on the main thread but the
// one bounded question whether a host is there at all.
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QPoint>
#include <memory>
#include <optional>

#include "app/TrayIconItem.h"

namespace corvanel {

class StatusNotifierAdaptor;

class StatusNotifierItem final : public TrayIconItem {
  public:
    static constexpr const char* objectPath = "/StatusNotifierItem";
    static constexpr const char* watcherService = "org.kde.StatusNotifierWatcher";

    // Whether `bus` has a watcher that answers within a second and knows a host that shows
    // items.
    static bool hostAvailable(const QDBusConnection& bus);

    StatusNotifierItem(QDBusConnection bus, std::shared_ptr<DesktopPalette> desktop);
    ~StatusNotifierItem() override;
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    // Sent as icons of 22 and 44 pixels.
    void setLabelImage(const QImage& image) override;
    // The title, the label beside the icon and the tooltip's text.
    void setTitle(const QString& title) override;
    // Active while inserted, passive (hosts may hide it) otherwise.
    void setInserted(bool inserted) override;
    // Where the host said the last click was, as a point; empty when it did not say.
    QRect geometry() const override;

    // "org.kde.StatusNotifierItem-<process id>-<n>", the name hosts know the item by.
    const QString& serviceName() const { return serviceName_; }

  private:
    void registerWithWatcher();

    QDBusConnection bus_;
    QString serviceName_;
    QObject exported_;
    StatusNotifierAdaptor* adaptor_;
    QDBusServiceWatcher watcherOwner_;
    std::optional<QPoint> lastClick_;
    bool registered_ = false;
};

}  // namespace corvanel
