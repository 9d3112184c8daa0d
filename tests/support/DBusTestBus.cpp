#include "DBusTestBus.h"

#include <chrono>
#include <fstream>
#include <thread>
#include <vector>

#include "ChildProcess.h"

namespace corvanel::testing {

DBusTestBus::DBusTestBus() {
    directory_ = makePrivateDirectory("corvanel-bus-");
    if (directory_.empty()) {
        failure_ = "could not make a temporary directory for the D-Bus session bus";
        return;
    }
    const std::filesystem::path socketPath = directory_ / "bus";
    address_ = "unix:path=" + socketPath.string();
    const std::filesystem::path config = directory_ / "session.conf";
    std::ofstream(config) << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-BUS Bus "
                             "Configuration 1.0//EN\"\n"
                             " \"http://www.freedesktop.org/standards/dbus/1.0/"
                             "busconfig.dtd\">\n"
                             "<busconfig>\n"
                             "  <type>session</type>\n"
                             "  <listen>"
                          << address_
                          << "</listen>\n"
                             "  <auth>EXTERNAL</auth>\n"
                             "  <policy context=\"default\">\n"
                             "    <allow send_destination=\"*\" eavesdrop=\"true\"/>\n"
                             "    <allow eavesdrop=\"true\"/>\n"
                             "    <allow own=\"*\"/>\n"
                             "  </policy>\n"
                             "</busconfig>\n";
    const std::filesystem::path log = directory_ / "dbus.log";
    daemon_ =
        startProgram({"dbus-daemon", "--nofork", "--nopidfile", "--config-file=" + config.string()},
                     {}, log.string());
    if (daemon_ < 0) {
        failure_ = "could not start dbus-daemon (scripts/bootstrap installs it)";
        return;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < deadline) {
        if (hasExited(daemon_)) {
            daemon_ = -1;
            failure_ = "dbus-daemon exited while starting:\n" + readTextFile(log);
            return;
        }
        if (acceptsConnections(socketPath)) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    failure_ = "dbus-daemon did not accept connections within 10 s:\n" + readTextFile(log);
}

DBusTestBus::~DBusTestBus() {
    stopProgram(daemon_);
    std::error_code ignored;
    if (!directory_.empty()) std::filesystem::remove_all(directory_, ignored);
}

std::vector<std::string> DBusTestBus::clientEnvironment() const {
    return {"DBUS_SESSION_BUS_ADDRESS=" + address_,
            "DBUS_SYSTEM_BUS_ADDRESS=unix:path=" + (directory_ / "no-system-bus").string()};
}

}  // namespace corvanel::testing
