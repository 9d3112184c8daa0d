// The Qt adapters: typed settings across store instances, the locale's time of day, and the
// single-instance handshake over the local socket.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <atomic>
#include <limits>
#include <memory>
#include <thread>

#include "GuiApplication.h"
#include "platform/qt/LocalWorkspace.h"
#include "platform/qt/QtSettingsStore.h"
#include "platform/qt/QtTimeOfDay.h"
#include "platform/qt/XdgAutostart.h"

namespace corvanel {
namespace {

class QtSettingsStoreTest : public ::testing::Test {
  protected:
    void SetUp() override { testing::guiApplication(); }
    QString path() const { return directory_.filePath("settings.json"); }

  private:
    QTemporaryDir directory_;
};

TEST_F(QtSettingsStoreTest, ValuesKeepTheirTypeInAFreshStoreOnTheSameFile) {
    {
        QtSettingsStore writer(path());
        writer.write("autoSwitchEnabled", false);
        writer.write("NSStatusItem Preferred Position Item-0", std::int64_t{10000});
        writer.write("panelMeterStyle", std::string("ledrack"));
        writer.write("looksLikeABoolean", std::string("true"));
    }
    const QtSettingsStore reader(path());
    EXPECT_EQ(reader.read("autoSwitchEnabled"), SettingValue(false));
    EXPECT_EQ(reader.read("NSStatusItem Preferred Position Item-0"),
              SettingValue(std::int64_t{10000}));
    EXPECT_EQ(reader.read("panelMeterStyle"), SettingValue(std::string("ledrack")));
    // A text that spells a boolean stays a text, so the boolean defaults still apply to it.
    EXPECT_EQ(reader.read("looksLikeABoolean"), SettingValue(std::string("true")));
    EXPECT_TRUE(readBool(reader, "looksLikeABoolean", true));
    EXPECT_FALSE(readBool(reader, "looksLikeABoolean", false));
    EXPECT_EQ(reader.read("neverWritten"), SettingValue(std::monostate{}));
}

TEST_F(QtSettingsStoreTest, AWriteIsVisibleToAStoreOpenedAfterIt) {
    QtSettingsStore first(path());
    first.write("pauseDuringSwitch", true);
    const QtSettingsStore second(path());
    EXPECT_EQ(second.read("pauseDuringSwitch"), SettingValue(true));
    first.write("pauseDuringSwitch", false);
    EXPECT_EQ(QtSettingsStore(path()).read("pauseDuringSwitch"), SettingValue(false));
}

TEST_F(QtSettingsStoreTest, ForeignValueTypesReadAsOtherAndSurviveOurWrites) {
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(R"({"spectrumEnabled": [1, 2], "ratio": 0.5, "autoSwitchEnabled": "yes"})");
    }
    QtSettingsStore store(path());
    EXPECT_EQ(store.read("spectrumEnabled"), SettingValue(OtherSettingValue{}));
    EXPECT_EQ(store.read("ratio"), SettingValue(OtherSettingValue{}));
    EXPECT_TRUE(readBool(store, "spectrumEnabled", true));
    EXPECT_TRUE(readBool(store, "autoSwitchEnabled", true));
    store.write("pauseDuringSwitch", true);
    const QtSettingsStore reopened(path());
    EXPECT_EQ(reopened.read("spectrumEnabled"), SettingValue(OtherSettingValue{}));
    EXPECT_EQ(reopened.read("pauseDuringSwitch"), SettingValue(true));
}

TEST_F(QtSettingsStoreTest, ABrokenFileIsKeptAsItWasAndWhatStillReadsCarriesOver) {
    struct Case {
        const char* text;
        qsizetype recovered;
    };
    const Case cases[] = {
        {R"({"autoSwitchEnabled": false, "panelMeterStyle": "ledrack",})", 2},
        {R"({"autoSwitchEnabled": false, "spectrumEnabled": [true, {"a": "}"}], "panelMeter)", 2},
        {"{ not json", 0},
    };
    for (const Case& broken : cases) {
        SCOPED_TRACE(broken.text);
        QTemporaryDir folder;
        const QString file = folder.filePath("settings.json");
        {
            QFile out(file);
            ASSERT_TRUE(out.open(QIODevice::WriteOnly));
            out.write(broken.text);
        }
        {
            QtSettingsStore store(file);
            store.write("pauseDuringSwitch", true);
            ASSERT_TRUE(store.startupNotice());
            EXPECT_NE(store.startupNotice()->find(std::to_string(broken.recovered) + " setting"),
                      std::string::npos)
                << *store.startupNotice();
        }
        const QStringList kept = QDir(folder.path()).entryList({"settings.json.unreadable-*"});
        ASSERT_EQ(kept.size(), 1);
        QFile aside(folder.filePath(kept.front()));
        ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
        EXPECT_EQ(aside.readAll(), QByteArray(broken.text));

        const QtSettingsStore reopened(file);
        EXPECT_FALSE(reopened.startupNotice());  // told once
        EXPECT_EQ(reopened.read("pauseDuringSwitch"), SettingValue(true));
        EXPECT_EQ(readBool(reopened, "autoSwitchEnabled", true), broken.recovered == 0);
    }
}

TEST_F(QtSettingsStoreTest, NumbersAtTheEdgesOf64BitsReadAsWhatTheyAre) {
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(R"({"max": 9223372036854775807, "min": -9223372036854775808,
                       "below": 9223372036854774784, "huge": -1e300, "half": 0.5})");
    }
    const QtSettingsStore store(path());
    // 9223372036854775807 reaches a double as 2^63, one past the largest 64-bit integer.
    EXPECT_EQ(store.read("max"), SettingValue(OtherSettingValue{}));
    EXPECT_EQ(store.read("min"), SettingValue(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(store.read("below"), SettingValue(std::int64_t{9223372036854774784}));
    EXPECT_EQ(store.read("huge"), SettingValue(OtherSettingValue{}));
    EXPECT_EQ(store.read("half"), SettingValue(OtherSettingValue{}));
}

TEST(QtTimeOfDayTest, UsesTheLongTimeStyleWithoutTheZone) {
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const QString format = timeFormatWithoutZone(english);
    EXPECT_FALSE(format.contains(u't')) << format.toStdString();
    EXPECT_TRUE(format.contains("ss")) << format.toStdString();

    const QDateTime local(QDate(2024, 3, 5), QTime(15, 4, 5));
    const WallTime time{std::chrono::milliseconds(local.toMSecsSinceEpoch())};
    EXPECT_EQ(qtTimeOfDay(english, time), "3:04:05 PM");
    EXPECT_EQ(qtTimeOfDay(QLocale(QLocale::German, QLocale::Germany), time), "15:04:05");
}

TEST(LocalWorkspaceTest, TheNewerCopyAsksTheOlderToQuitAndTakesTheSocket) {
    testing::guiApplication();
    QTemporaryDir folder;
    const QString name = folder.filePath("corvanel.socket");
    // The older copy answers from its own event loop, as a separate process would.
    QThread olderThread;
    QObject olderContext;
    olderContext.moveToThread(&olderThread);
    olderThread.start();
    std::atomic<int> olderQuits = 0;
    std::unique_ptr<LocalWorkspace> older;
    QMetaObject::invokeMethod(
        &olderContext,
        [&] {
            older = std::make_unique<LocalWorkspace>(
                name, LocalWorkspace::Actions{.quit = [&] { ++olderQuits; }, .activate = {}});
            older->askOlderCopiesToQuit();
        },
        Qt::BlockingQueuedConnection);

    int newerQuits = 0;
    LocalWorkspace newer(name, {.quit = [&] { ++newerQuits; }, .activate = {}});
    newer.askOlderCopiesToQuit();
    EXPECT_EQ(olderQuits, 1);
    EXPECT_EQ(newerQuits, 0);
    EXPECT_TRUE(newer.isListening());
    bool olderListening = true;
    QMetaObject::invokeMethod(
        &olderContext,
        [&] {
            olderListening = older->isListening();
            older.reset();
        },
        Qt::BlockingQueuedConnection);
    olderThread.quit();
    olderThread.wait();
    EXPECT_FALSE(olderListening);

    // A third copy finds the second one listening.
    QLocalSocket probe;
    probe.connectToServer(name);
    EXPECT_TRUE(probe.waitForConnected(1000));
}

TEST(LocalWorkspaceTest, AClientThatNeverEndsItsLineIsCutOffAndQuitsNothing) {
    testing::guiApplication();
    QTemporaryDir folder;
    const QString socket = folder.filePath("corvanel.socket");
    int quits = 0;
    LocalWorkspace running(socket, {.quit = [&] { ++quits; }, .activate = {}});
    running.askOlderCopiesToQuit();
    ASSERT_TRUE(running.isListening());

    // The client streams from its own thread while this one runs the copy's event loop.
    std::atomic<bool> done = false;
    std::atomic<bool> cutOff = false;
    std::thread client([&] {
        QLocalSocket stream;
        stream.connectToServer(socket);
        if (stream.waitForConnected(5000)) {
            const QByteArray chunk(64 * 1024, 'x');
            for (int i = 0; i < 64 && stream.state() == QLocalSocket::ConnectedState; ++i) {
                stream.write(chunk);
                stream.waitForBytesWritten(1000);
            }
            cutOff = stream.state() == QLocalSocket::UnconnectedState ||
                     stream.waitForDisconnected(5000);
        }
        done = true;
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return done.load(); }, 60000));
    client.join();
    EXPECT_TRUE(cutOff);
    EXPECT_EQ(quits, 0);
    EXPECT_TRUE(running.isListening());
}

TEST(LocalWorkspaceTest, ApplicationsAreFilesAndActivationIsPassedOn) {
    int activations = 0;
    LocalWorkspace workspace("corvanel-test-unused",
                             {.quit = {}, .activate = [&] { ++activations; }});
    EXPECT_FALSE(workspace.hasApplication("/System/Applications/Utilities/Audio MIDI Setup.app"));
    EXPECT_TRUE(workspace.hasApplication(QCoreApplication::applicationFilePath().toStdString()));
    workspace.activateSelf();
    EXPECT_EQ(activations, 1);
}

}  // namespace
}  // namespace corvanel

namespace corvanel {
namespace {

TEST(XdgAutostartTest, RegisteringWritesAnEntryThatRunsThisExecutable) {
    QTemporaryDir home;
    const QString entry = home.filePath("config/autostart/corvanel.desktop");
    XdgAutostart autostart(entry, "/opt/Corvanel \"beta\"/corvanel");
    EXPECT_EQ(autostart.status(), LoginItemStatus::notRegistered);

    EXPECT_EQ(autostart.registerApp(), std::nullopt);
    EXPECT_EQ(autostart.status(), LoginItemStatus::enabled);
    QFile file(entry);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("Exec=\"/opt/Corvanel \\\"beta\\\"/corvanel\"\n"));

    EXPECT_EQ(autostart.unregisterApp(), std::nullopt);
    EXPECT_EQ(autostart.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(autostart.unregisterApp(), std::nullopt);  // nothing left to remove
}

TEST(XdgAutostartTest, AnEntrySwitchedOffByTheDesktopIsNotEnabledAndFailuresAreWorded) {
    QTemporaryDir home;
    const QString entry = home.filePath("corvanel.desktop");
    QFile file(entry);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nExec=corvanel\nHidden=true\n");
    file.close();
    EXPECT_EQ(XdgAutostart(entry, "corvanel").status(), LoginItemStatus::notRegistered);

    // The autostart folder cannot be made where a plain file stands.
    QFile blocker(home.filePath("blocked"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    const auto failure =
        XdgAutostart(home.filePath("blocked/autostart/corvanel.desktop"), "corvanel").registerApp();
    ASSERT_TRUE(failure);
    EXPECT_NE(failure->find("blocked"), std::string::npos);
}

}  // namespace
}  // namespace corvanel
