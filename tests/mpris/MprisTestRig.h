#pragma once
// The player adapter on a private session bus with test players of our own: the bus, the
// adapter's ports on a real Qt main executor, a second connection through which the test
// commands the players, and the players' call journals. Waits spin the Qt event loop, which
// delivers the bus's signals and the executor's work.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QTest>
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "DBusTestBus.h"
#include "platform/MusicScripts.h"
#include "platform/linux/PlaybackStreams.h"
#include "platform/linux/mpris/MprisPorts.h"
#include "platform/qt/QtMainExecutor.h"

namespace corvanel::testing {

// The sound server's streams, as the test says they are.
class FakePlaybackStreams final : public PlaybackStreams {
  public:
    std::map<std::int64_t, PlaybackStreamFormat> streams;

    std::optional<PlaybackStreamFormat> streamOfProcess(std::int64_t processID) const override {
        const auto found = streams.find(processID);
        if (found == streams.end()) return std::nullopt;
        return found->second;
    }
};

struct TestPlayerProcess {
    pid_t pid = -1;
    QString busName;
    std::filesystem::path journal;
};

inline bool waitFor(const std::function<bool()>& condition, int milliseconds = 5000) {
    return QTest::qWaitFor(condition, milliseconds);
}

class MprisTestRig {
  public:
    MprisTestRig() : directory_(makePrivateDirectory("corvanel-mpris-")) {
        if (!bus_.failure().empty()) return;
        adapterBus_ = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(
            QString::fromStdString(bus_.address()), QStringLiteral("corvanel-adapter")));
        controlBus_ = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(
            QString::fromStdString(bus_.address()), QStringLiteral("corvanel-control")));
    }

    ~MprisTestRig() {
        ports = {};
        for (const TestPlayerProcess& player : players_)
            stopProgram(player.pid);
        adapterBus_.reset();
        controlBus_.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("corvanel-adapter"));
        QDBusConnection::disconnectFromBus(QStringLiteral("corvanel-control"));
        executor->shutDown();
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
    }

    MprisTestRig(const MprisTestRig&) = delete;
    MprisTestRig& operator=(const MprisTestRig&) = delete;

    // Empty when the bus and both connections are up.
    std::string failure() const {
        if (!bus_.failure().empty()) return bus_.failure();
        if (!adapterBus_->isConnected() || !controlBus_->isConnected())
            return "could not connect to the private session bus";
        return {};
    }

    // The adapter, watching the bus from now on.
    MprisPorts& start() {
        ports = makeMprisPorts(executor, streams, *adapterBus_);
        return ports;
    }

    const std::filesystem::path& directory() const { return directory_; }

    // Starts a test player (silent: these tests need no sound server) and waits until it has
    // taken its name. `arguments` are added to its command line.
    TestPlayerProcess startPlayer(int instance, const std::vector<std::string>& arguments = {}) {
        TestPlayerProcess player;
        player.busName = QStringLiteral("org.mpris.MediaPlayer2.corvaneltest%1").arg(instance);
        player.journal = directory_ / ("player" + std::to_string(instance) + ".journal");
        std::vector<std::string> command{CORVANEL_TEST_PLAYER, "--silent",
                                         "--instance",         std::to_string(instance),
                                         "--journal",          player.journal.string()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        player.pid =
            startProgram(command, bus_.clientEnvironment(), (directory_ / "players.log").string());
        players_.push_back(player);
        const bool ready = waitFor(
            [&] { return readTextFile(player.journal).find("event ready") != std::string::npos; });
        EXPECT_TRUE(ready) << readTextFile(directory_ / "players.log");
        return player;
    }

    // Stops a player by its process id (once: a reaped id may belong to another process later).
    void stopPlayer(const TestPlayerProcess& player) {
        std::erase_if(players_, [&player](const TestPlayerProcess& running) {
            return running.pid == player.pid;
        });
        stopProgram(player.pid);
    }

    // Calls a method of a test player and waits for its answer (from the test's own connection,
    // never the adapter's).
    QDBusMessage command(const TestPlayerProcess& player, const QString& interface,
                         const QString& method, const QVariantList& arguments = {}) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            player.busName, QStringLiteral("/org/mpris/MediaPlayer2"), interface, method);
        call.setArguments(arguments);
        return controlBus_->call(call, QDBus::Block, 5000);
    }
    QDBusMessage playerCall(const TestPlayerProcess& player, const QString& method,
                            const QVariantList& arguments = {}) {
        return command(player, QStringLiteral("org.mpris.MediaPlayer2.Player"), method, arguments);
    }
    QDBusMessage control(const TestPlayerProcess& player, const QString& method,
                         const QVariantList& arguments = {}) {
        return command(player, QStringLiteral("org.corvanel.TestPlayer"), method, arguments);
    }
    // Opens a file (its name's bytes as they are) as the player's new track.
    void open(const TestPlayerProcess& player, const std::filesystem::path& file) {
        control(player, QStringLiteral("Open"), {QByteArray::fromStdString(file.string())});
    }

    // The calls a player's journal holds, in order, without their time stamps.
    static std::vector<std::string> calls(const TestPlayerProcess& player) {
        std::vector<std::string> lines;
        const std::string text = readTextFile(player.journal);
        std::size_t start = 0;
        while (start < text.size()) {
            const std::size_t end = text.find('\n', start);
            const std::string line = text.substr(start, end - start);
            const std::size_t space = line.find(' ');
            if (space != std::string::npos) lines.push_back(line.substr(space + 1));
            if (end == std::string::npos) break;
            start = end + 1;
        }
        return lines;
    }

    std::optional<std::string> script(const char* source) {
        return ports.scripts->runScript(source);
    }

    std::shared_ptr<QtMainExecutor> executor = std::make_shared<QtMainExecutor>();
    std::shared_ptr<FakePlaybackStreams> streams = std::make_shared<FakePlaybackStreams>();
    MprisPorts ports;

  private:
    DBusTestBus bus_;
    std::filesystem::path directory_;
    std::unique_ptr<QDBusConnection> adapterBus_;
    std::unique_ptr<QDBusConnection> controlBus_;
    std::vector<TestPlayerProcess> players_;
};

}  // namespace corvanel::testing
