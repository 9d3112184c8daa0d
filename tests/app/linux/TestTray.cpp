#include "TestTray.h"

#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QTest>

namespace corvanel::testing {
namespace {

constexpr int replyMilliseconds = 5000;
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");

QString uniqueConnectionName(const char* role) {
    static int next = 0;
    return QStringLiteral("corvanel-test-%1-%2").arg(QLatin1String(role)).arg(++next);
}

}  // namespace

TestStatusNotifierWatcher::TestStatusNotifierWatcher(std::string busAddress)
    : address_(std::move(busAddress)) {}

TestStatusNotifierWatcher::~TestStatusNotifierWatcher() {
    stop();
}

QString TestStatusNotifierWatcher::start() {
    stop();
    connectionName_ = uniqueConnectionName("watcher");
    QDBusConnection bus =
        QDBusConnection::connectToBus(QString::fromStdString(address_), connectionName_);
    if (!bus.isConnected()) return "the watcher could not connect: " + bus.lastError().message();
    if (!bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), this,
                            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties))
        return QStringLiteral("the watcher's object could not go on the bus");
    if (!bus.registerService(watcherName))
        return "the watcher's name: " + bus.lastError().message();
    return {};
}

void TestStatusNotifierWatcher::stop() {
    if (connectionName_.isEmpty()) return;
    QDBusConnection::disconnectFromBus(connectionName_);
    connectionName_.clear();
}

void TestStatusNotifierWatcher::RegisterStatusNotifierItem(const QString& service) {
    registrations << service;
}

void TestStatusNotifierWatcher::RegisterStatusNotifierHost(const QString&) {}

TestTrayHost::TestTrayHost(const std::string& busAddress)
    : connectionName_(uniqueConnectionName("host")),
      bus_(QDBusConnection::connectToBus(QString::fromStdString(busAddress), connectionName_)) {}

TestTrayHost::~TestTrayHost() {
    QDBusConnection::disconnectFromBus(connectionName_);
}

QDBusMessage TestTrayHost::callAndWait(const QDBusMessage& call) {
    const QDBusPendingCall pending = bus_.asyncCall(call, replyMilliseconds);
    (void)QTest::qWaitFor([&] { return pending.isFinished(); }, replyMilliseconds + 1000);
    QCoreApplication::processEvents();
    return pending.reply();
}

QVariant TestTrayHost::property(const QString& service, const QString& name) {
    QDBusMessage get = QDBusMessage::createMethodCall(
        service, itemPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    get << itemInterface << name;
    const QDBusMessage reply = callAndWait(get);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return {};
    return reply.arguments().constFirst().value<QDBusVariant>().variant();
}

QDBusMessage TestTrayHost::call(const QString& service, const QString& method,
                                const QVariantList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(service, itemPath, itemInterface, method);
    call.setArguments(arguments);
    return callAndWait(call);
}

bool TestTrayHost::listen(const QString& service) {
    return bus_.connect(service, itemPath, itemInterface, QString(), this,
                        SLOT(record(QDBusMessage)));
}

void TestTrayHost::record(const QDBusMessage& message) {
    auto& [count, last] = received_[message.member()];
    ++count;
    last = message;
}

int TestTrayHost::count(const QString& signal) const {
    const auto found = received_.find(signal);
    return found == received_.end() ? 0 : found->second.first;
}

QDBusMessage TestTrayHost::last(const QString& signal) const {
    const auto found = received_.find(signal);
    return found == received_.end() ? QDBusMessage() : found->second.second;
}

void TestTrayHost::roundTrip(const QString& service) {
    (void)property(service, QStringLiteral("Status"));
}

QDBusMessage TestTrayHost::askBus(const QString& method, const QVariantList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), method);
    call.setArguments(arguments);
    return callAndWait(call);
}

QStringList TestTrayHost::servicesStartingWith(const QString& prefix) {
    const QDBusMessage reply = askBus(QStringLiteral("ListNames"), {});
    QStringList found;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) return found;
    for (const QString& name : reply.arguments().constFirst().toStringList())
        if (name.startsWith(prefix)) found << name;
    return found;
}

bool TestTrayHost::isConnected(qint64 processId) {
    for (const QString& connection : servicesStartingWith(QStringLiteral(":"))) {
        const QDBusMessage reply =
            askBus(QStringLiteral("GetConnectionUnixProcessID"), {connection});
        if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty() &&
            reply.arguments().constFirst().toLongLong() == processId)
            return true;
    }
    return false;
}

}  // namespace corvanel::testing
