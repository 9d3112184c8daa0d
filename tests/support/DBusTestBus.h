#pragma once
// A private D-Bus session bus for one test suite: its own dbus-daemon on a socket in a private
// directory, with no service directories (nothing is started on demand) and a system-bus
// address that leads nowhere. Stopped by process id when the object goes.
#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace corvanel::testing {

class DBusTestBus {
  public:
    DBusTestBus();
    ~DBusTestBus();
    DBusTestBus(const DBusTestBus&) = delete;
    DBusTestBus& operator=(const DBusTestBus&) = delete;

    // Empty when the bus runs; otherwise why not.
    const std::string& failure() const { return failure_; }
    // "unix:path=…", for DBUS_SESSION_BUS_ADDRESS.
    const std::string& address() const { return address_; }
    // The environment entries that point a client at this bus only.
    std::vector<std::string> clientEnvironment() const;
    pid_t pid() const { return daemon_; }

  private:
    std::filesystem::path directory_;
    std::string address_;
    pid_t daemon_ = -1;
    std::string failure_;
};

}  // namespace corvanel::testing
