#pragma once
// The interface org.kde.StatusNotifierItem as a tray host reads it: the item's properties, the
// clicks it forwards and the signals that tell the host to read again. It also carries the text
// label that hosts following the Ayatana extension show beside the icon (XAyatanaLabel). It
// holds only what it shows; StatusNotifierItem decides what that is.
#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QPoint>
#include <functional>

#include "app/linux/StatusNotifierTypes.h"

namespace corvanel {

class StatusNotifierAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ noName)
    Q_PROPERTY(QString IconName READ noName)
    Q_PROPERTY(corvanel::StatusNotifierPixmaps IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ noName)
    Q_PROPERTY(corvanel::StatusNotifierPixmaps OverlayIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionIconName READ noName)
    Q_PROPERTY(corvanel::StatusNotifierPixmaps AttentionIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionMovieName READ noName)
    Q_PROPERTY(corvanel::StatusNotifierToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ labelGuide)

  public:
    // `exported` is the object registered on the bus; the adaptor is its child.
    StatusNotifierAdaptor(QObject* exported, QString id, QString labelGuide);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return id_; }
    QString title() const { return title_; }
    QString status() const { return status_; }
    int windowId() const { return 0; }
    QString noName() const { return {}; }
    StatusNotifierPixmaps iconPixmap() const { return icon_; }
    StatusNotifierPixmaps noPixmaps() const { return {}; }
    StatusNotifierToolTip toolTip() const { return toolTip_; }
    // The item has no menu: a click opens the application's own popup.
    bool itemIsMenu() const { return false; }
    QDBusObjectPath menu() const { return QDBusObjectPath(QStringLiteral("/NO_DBUSMENU")); }
    QString label() const { return title_; }
    QString labelGuide() const { return labelGuide_; }

    // Each emits the signal that tells hosts to read the new value.
    void setTitle(const QString& title, const StatusNotifierToolTip& toolTip);
    void setStatus(const QString& status);
    void setIcon(StatusNotifierPixmaps icon);

    // A click on the item (Activate, ContextMenu), at the host's screen position.
    std::function<void(QPoint at)> onClicked;

  public Q_SLOTS:
    void Activate(int x, int y);
    void ContextMenu(int x, int y);
    void SecondaryActivate(int x, int y);
    void Scroll(int delta, const QString& orientation);

  Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewToolTip();
    void NewStatus(const QString& status);
    void XAyatanaNewLabel(const QString& label, const QString& guide);

  private:
    QString id_;
    QString labelGuide_;
    QString title_;
    QString status_ = QStringLiteral("Passive");
    StatusNotifierPixmaps icon_;
    StatusNotifierToolTip toolTip_;
};

}  // namespace corvanel
