#include "app/linux/StatusNotifierItem.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusVariant>

#include "CorvanelIdentity.h"
#include "app/TrayIcon.h"
#include "app/linux/StatusNotifierAdaptor.h"

namespace corvanel {
namespace {

constexpr int hostQuestionMilliseconds = 1000;
constexpr uint doNotQueue = 4;  // DBUS_NAME_FLAG_DO_NOT_QUEUE

// The widest title a device usually shows, so that a host can keep the label's width steady.
QString labelGuide() {
    return QString::fromUtf8("352.8 kHz \u00b7 32-bit");
}

QString nextServiceName() {
    static int instance = 0;
    return QStringLiteral("org.kde.StatusNotifierItem-%1-%2")
        .arg(QCoreApplication::applicationPid())
        .arg(++instance);
}

QDBusMessage busDaemonCall(const QString& method, const QString& name) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), method);
    call << name;
    return call;
}

}  // namespace

bool StatusNotifierItem::hostAvailable(const QDBusConnection& bus) {
    if (!bus.isConnected()) return false;
    QDBusMessage question = QDBusMessage::createMethodCall(
        watcherService, QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << QString::fromLatin1(watcherService)
             << QStringLiteral("IsStatusNotifierHostRegistered");
    // A desktop without a tray has no watcher; none is to be started for us.
    question.setAutoStartService(false);
    const QDBusMessage answer = bus.call(question, QDBus::Block, hostQuestionMilliseconds);
    return answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty() &&
           answer.arguments().constFirst().value<QDBusVariant>().variant().toBool();
}

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, std::shared_ptr<DesktopPalette> desktop)
    : TrayIconItem(std::move(desktop)),
      bus_(std::move(bus)),
      serviceName_(nextServiceName()),
      adaptor_(
          new StatusNotifierAdaptor(&exported_, QString::fromLatin1(applicationId), labelGuide())),
      watcherOwner_(QString::fromLatin1(watcherService), bus_,
                    QDBusServiceWatcher::WatchForOwnerChange) {
    registerStatusNotifierTypes();
    adaptor_->onClicked = [this](QPoint at) {
        // Hosts that do not know where the click was (on Wayland) say (0, 0).
        lastClick_ = at.isNull() ? std::nullopt : std::optional(at);
        if (onActivated) onActivated();
    };
    QObject::connect(&watcherOwner_, &QDBusServiceWatcher::serviceOwnerChanged, &exported_,
                     [this](const QString&, const QString&, const QString& newOwner) {
                         if (registered_ && !newOwner.isEmpty()) registerWithWatcher();
                     });
    bus_.registerObject(QString::fromLatin1(objectPath), &exported_);
    // Not waited for: the bus handles one connection's messages in order, so the name is the
    // item's before a watcher hears of it.
    QDBusMessage request = busDaemonCall(QStringLiteral("RequestName"), serviceName_);
    request << doNotQueue;
    bus_.send(request);
}

StatusNotifierItem::~StatusNotifierItem() {
    bus_.unregisterObject(QString::fromLatin1(objectPath));
    bus_.send(busDaemonCall(QStringLiteral("ReleaseName"), serviceName_));
}

void StatusNotifierItem::setLabelImage(const QImage& image) {
    adaptor_->setIcon(
        {statusNotifierPixmap(trayIconAtOnePixelPerPoint(image)), statusNotifierPixmap(image)});
}

void StatusNotifierItem::setTitle(const QString& title) {
    adaptor_->setTitle(title, {{}, {}, QStringLiteral("Corvanel"), title});
}

void StatusNotifierItem::setInserted(bool inserted) {
    adaptor_->setStatus(inserted ? QStringLiteral("Active") : QStringLiteral("Passive"));
    if (inserted && !registered_) {
        registered_ = true;
        registerWithWatcher();
    }
}

QRect StatusNotifierItem::geometry() const {
    return lastClick_ ? QRect(*lastClick_, QSize(1, 1)) : QRect();
}

void StatusNotifierItem::registerWithWatcher() {
    QDBusMessage registration = QDBusMessage::createMethodCall(
        watcherService, QStringLiteral("/StatusNotifierWatcher"), watcherService,
        QStringLiteral("RegisterStatusNotifierItem"));
    registration << serviceName_;
    bus_.send(registration);
}

}  // namespace corvanel
