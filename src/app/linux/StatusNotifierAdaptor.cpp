#include "app/linux/StatusNotifierAdaptor.h"

namespace corvanel {

StatusNotifierAdaptor::StatusNotifierAdaptor(QObject* exported, QString id, QString labelGuide)
    : QDBusAbstractAdaptor(exported), id_(std::move(id)), labelGuide_(std::move(labelGuide)) {}

void StatusNotifierAdaptor::setTitle(const QString& title, const StatusNotifierToolTip& toolTip) {
    title_ = title;
    toolTip_ = toolTip;
    Q_EMIT NewTitle();
    Q_EMIT NewToolTip();
    Q_EMIT XAyatanaNewLabel(title_, labelGuide_);
}

void StatusNotifierAdaptor::setStatus(const QString& status) {
    if (status == status_) return;
    status_ = status;
    Q_EMIT NewStatus(status_);
}

void StatusNotifierAdaptor::setIcon(StatusNotifierPixmaps icon) {
    icon_ = std::move(icon);
    Q_EMIT NewIcon();
}

void StatusNotifierAdaptor::Activate(int x, int y) {
    if (onClicked) onClicked(QPoint(x, y));
}

void StatusNotifierAdaptor::ContextMenu(int x, int y) {
    // The tray icon of QSystemTrayIcon opens the popup on a right click too.
    if (onClicked) onClicked(QPoint(x, y));
}

void StatusNotifierAdaptor::SecondaryActivate(int, int) {
    // A middle click does nothing, as on the QSystemTrayIcon item.
}

void StatusNotifierAdaptor::Scroll(int, const QString&) {}

}  // namespace corvanel
