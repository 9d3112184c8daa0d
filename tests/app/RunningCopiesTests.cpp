// The real application as a user starts it, each test with a home and runtime folder of its
// own: copies started at the same moment leave exactly one running, a headless diagnostic run
// leaves the user's copy alone, and a settings file that cannot be read outlives the run.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <filesystem>
#include <memory>
#include <vector>

#include "GuiApplication.h"
#include "PrivateHome.h"
#include "platform/qt/QtSettingsStore.h"

namespace corvanel {
namespace {

class RunningCopies : public ::testing::Test {
  protected:
    RunningCopies() { testing::guiApplication(); }
    ~RunningCopies() override {
        for (const auto& copy : copies_) {
            copy->kill();
            copy->waitForFinished(10000);
        }
    }

    QString home() const { return home_.path(); }
    QString runtime() const { return home_.runtime(); }
    QString file(const char* name) const { return home_.filePath(QString::fromLatin1(name)); }

    QProcess& start(const QStringList& arguments) {
        const QProcessEnvironment environment = home_.environment();
        auto& copy = copies_.emplace_back(std::make_unique<QProcess>());
        copy->setProcessEnvironment(environment);
        copy->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        copy->start(QStringLiteral(CORVANEL_BINARY_DIR "/src/corvanel"),
                    QStringList{"--demo"} + arguments);
        return *copy;
    }

    // The copies that listen on a local socket inside this test's home. A copy that has let go
    // of the name and is on its way out does not count; one that lost the name but kept
    // listening does, as it would still act as the application.
    std::size_t listening(const std::vector<QProcess*>& copies) const {
        QFile table("/proc/net/unix");
        if (!table.open(QIODevice::ReadOnly)) return 0;
        QSet<QString> inodes;
        table.readLine();  // "Num RefCount Protocol Flags Type St Inode Path"
        constexpr unsigned acceptingConnections = 0x10000;
        while (!table.atEnd()) {
            const QStringList fields = QString::fromUtf8(table.readLine()).simplified().split(' ');
            if (fields.size() == 8 && (fields[3].toUInt(nullptr, 16) & acceptingConnections) &&
                fields[7].startsWith(home()))
                inodes.insert(fields[6]);
        }
        return std::size_t(std::count_if(copies.begin(), copies.end(), [&](QProcess* copy) {
            if (copy->state() == QProcess::NotRunning) return false;
            std::error_code error;
            const std::string descriptors = "/proc/" + std::to_string(copy->processId()) + "/fd";
            for (const auto& entry : std::filesystem::directory_iterator(descriptors, error)) {
                const QString target =
                    QString::fromStdString(std::filesystem::read_symlink(entry.path(), error));
                if (target.startsWith("socket:[") && inodes.contains(target.mid(8).chopped(1)))
                    return true;
            }
            return false;
        }));
    }

    // Whether a socket lives in the runtime folder (its name is the application's business).
    bool runtimeHasSocket() const {
        std::error_code error;
        for (const auto& entry :
             std::filesystem::directory_iterator(runtime().toStdString(), error))
            if (entry.is_socket()) return true;
        return false;
    }

    // A short headless run; its standard output once it has ended.
    QString headlessRun(const QStringList& arguments) {
        QProcess& run = start(QStringList{"--headless", "--duration", "0.5"} + arguments);
        if (!run.waitForFinished(60000) || run.exitCode() != 0) return "did not end well";
        return QString::fromUtf8(run.readAllStandardOutput());
    }

  private:
    testing::PrivateHome home_;
    std::vector<std::unique_ptr<QProcess>> copies_;
};

#if defined(__linux__)
// Which copy listens is read from /proc.
TEST_F(RunningCopies, CopiesStartedAtTheSameMomentLeaveExactlyOne) {
    for (int round = 1; round <= 5; ++round) {
        SCOPED_TRACE(round);
        std::vector<QProcess*> together;
        for (int i = 0; i < 3; ++i)
            together.push_back(&start({}));
        // The copies asked to quit let go; a copy taking the name late would show within a second.
        const auto settled = [&] {
            return std::all_of(
                       together.begin(), together.end(),
                       [](QProcess* copy) { return copy->state() != QProcess::Starting; }) &&
                   listening(together) == 1;
        };
        (void)QTest::qWaitFor(settled, 30000);
        QTest::qWait(1500);
        ASSERT_EQ(listening(together), 1u);
        EXPECT_TRUE(runtimeHasSocket());
        for (QProcess* copy : together) {
            copy->terminate();
            copy->waitForFinished(10000);
        }
    }
}
#endif

TEST_F(RunningCopies, AHeadlessRunLeavesTheUsersCopyRunning) {
    QProcess& users = start({});
    ASSERT_TRUE(QTest::qWaitFor([&] { return runtimeHasSocket(); }, 30000));
    EXPECT_NE(headlessRun({}), "did not end well");
    QTest::qWait(1000);
    EXPECT_EQ(users.state(), QProcess::Running);
    EXPECT_TRUE(runtimeHasSocket());
}

TEST_F(RunningCopies, AnUnreadableSettingsFileOutlivesTheRunAndTheUserIsToldOnce) {
    const QByteArray broken = R"({"autoSwitchEnabled": false, "panelMeterStyle": "ledrack",)"
                              "\n}\n";
    {
        QFile settings(file("settings.json"));
        ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
        settings.write(broken);
    }
    const QStringList withFile{"--settings", file("settings.json")};
    const QString first = headlessRun(withFile);
    EXPECT_TRUE(
        first.contains("  Settings file could not be read \u2014 kept as "
                       "settings.json.unreadable-"))
        << first.toStdString();
    EXPECT_TRUE(first.contains(", 2 settings recovered\n")) << first.toStdString();

    EXPECT_EQ(QDir(home()).entryList({"settings.json.unreadable-*"}).size(), 1);
    EXPECT_EQ(QtSettingsStore(file("settings.json")).read("autoSwitchEnabled"),
              SettingValue(false));

    const QString second = headlessRun(withFile);
    EXPECT_FALSE(second.contains("Settings file")) << second.toStdString();
}

}  // namespace
}  // namespace corvanel
