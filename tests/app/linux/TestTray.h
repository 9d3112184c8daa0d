#pragma once
// The tray side of the StatusNotifierItem protocol, as a test plays it on a private bus: a
// watcher that records the items that register and says a host shows them, and a host that reads
// an item's properties, calls its methods and counts its signals. Each has a connection of its
// own; nothing here blocks the thread, so the item under test may live on the same one.
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariant>
#include <map>
#include <string>

namespace corvanel::testing {

class TestStatusNotifierWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isStatusNotifierHostRegistered)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ registeredStatusNotifierItems)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

  public:
    explicit TestStatusNotifierWatcher(std::string busAddress);
    ~TestStatusNotifierWatcher() override;

    // Takes the watcher's name on the bus (again, after stop(): a new connection, as a restarted
    // desktop shell has). Empty, or why not.
    QString start();
    // Gives up the name and the connection, as a desktop shell that quits.
    void stop();

    bool isStatusNotifierHostRegistered() const { return true; }
    QStringList registeredStatusNotifierItems() const { return registrations; }
    int protocolVersion() const { return 0; }

    // Every registration in order: the service name each item gave.
    QStringList registrations;

  public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service);
    void RegisterStatusNotifierHost(const QString& service);

  private:
    std::string address_;
    QString connectionName_;
};

class TestTrayHost final : public QObject {
    Q_OBJECT

  public:
    explicit TestTrayHost(const std::string& busAddress);
    ~TestTrayHost() override;

    QDBusConnection& bus() { return bus_; }
    // The item's property, as a host reads it (absent on an error).
    QVariant property(const QString& service, const QString& name);
    // Calls an item method and waits for its reply, handling the event loop meanwhile.
    QDBusMessage call(const QString& service, const QString& method, const QVariantList& arguments);
    // A call of any object on the bus, answered while the event loop runs.
    QDBusMessage callAndWait(const QDBusMessage& call);
    // Counts the item's signals by name from now on.
    bool listen(const QString& service);
    int count(const QString& signal) const;
    QDBusMessage last(const QString& signal) const;
    // Every signal the item sent before the host's next call has been counted.
    void roundTrip(const QString& service);
    // The services on the bus whose name starts with `prefix`.
    QStringList servicesStartingWith(const QString& prefix);
    // Whether a process with this id has a connection to the bus.
    bool isConnected(qint64 processId);

  private Q_SLOTS:
    void record(const QDBusMessage& message);

  private:
    QDBusMessage askBus(const QString& method, const QVariantList& arguments);

    QString connectionName_;
    QDBusConnection bus_;
    std::map<QString, std::pair<int, QDBusMessage>> received_;
};

}  // namespace corvanel::testing
