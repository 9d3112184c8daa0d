// The real application started on a private session bus: where a watcher with a host is there it
// puts its own StatusNotifierItem in the tray, with the engine's title as the text label; where
// none is, it falls back to the system tray icon or its own label window and puts nothing there;
// a headless diagnostic run never does.
#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <memory>

#include "DBusTestBus.h"
#include "PrivateHome.h"
#include "TestTray.h"

namespace corvanel {
namespace {

constexpr int startMilliseconds = 30000;

class TrayChoiceTest : public ::testing::Test {
  protected:
    ~TrayChoiceTest() override {
        if (application.state() != QProcess::NotRunning) {
            application.terminate();
            if (!application.waitForFinished(10000)) application.kill();
        }
    }

    void SetUp() override {
        ASSERT_EQ(bus.failure(), "");
        ASSERT_TRUE(home.isValid());
    }

    void start(const QStringList& arguments = {}) {
        QProcessEnvironment environment = home.environment();
        for (const std::string& entry : bus.clientEnvironment()) {
            const QString text = QString::fromStdString(entry);
            const qsizetype equals = text.indexOf('=');
            environment.insert(text.left(equals), text.mid(equals + 1));
        }
        application.setProcessEnvironment(environment);
        application.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        application.start(QStringLiteral(CORVANEL_BINARY_DIR "/src/corvanel"),
                          QStringList{"--demo"} + arguments);
        ASSERT_TRUE(application.waitForStarted()) << application.errorString().toStdString();
    }

    testing::DBusTestBus bus;
    testing::PrivateHome home;
    testing::TestStatusNotifierWatcher watcher{bus.address()};
    testing::TestTrayHost host{bus.address()};
    QProcess application;
};

TEST_F(TrayChoiceTest, WithAWatcherTheAppsOwnItemCarriesTheTitleAsItsLabel) {
    ASSERT_EQ(watcher.start(), "");
    start();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return !watcher.registrations.isEmpty(); }, startMilliseconds));
    const QString service = watcher.registrations.front();
    EXPECT_EQ(service,
              QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(application.processId()));
    // The demo's device title, as the menu bar shows it ("48 kHz", "96 kHz · 24-bit").
    QString label;
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            label = host.property(service, "XAyatanaLabel").toString();
            return QRegularExpression("^\\d+(\\.\\d)? kHz").match(label).hasMatch();
        },
        startMilliseconds))
        << label.toStdString();
    EXPECT_EQ(host.property(service, "Title").toString(), label);
    const QVariant icon = host.property(service, "IconPixmap");
    EXPECT_EQ(icon.value<QDBusArgument>().currentSignature(), "a(iiay)");
    EXPECT_EQ(application.state(), QProcess::Running);
}

TEST_F(TrayChoiceTest, WithoutAWatcherNothingGoesOnTheBusAndTheAppRunsOn) {
    start();
    // The copy connects to the bus to look for a watcher; an item of its own would take its
    // name right after.
    ASSERT_TRUE(QTest::qWaitFor([&] { return host.isConnected(application.processId()); },
                                startMilliseconds));
    QTest::qWait(500);
    EXPECT_EQ(host.servicesStartingWith("org.kde.StatusNotifierItem-"), QStringList{});
    EXPECT_EQ(application.state(), QProcess::Running);
}

TEST_F(TrayChoiceTest, AHeadlessRunPutsNothingInTheTray) {
    ASSERT_EQ(watcher.start(), "");
    start({"--headless", "--duration", "0.5"});
    // The watcher answers while the run lasts.
    ASSERT_TRUE(QTest::qWaitFor([&] { return application.state() == QProcess::NotRunning; },
                                startMilliseconds));
    EXPECT_EQ(application.exitCode(), 0);
    QTest::qWait(100);  // a registration sent would have arrived by now
    EXPECT_EQ(watcher.registrations, QStringList{});
}

}  // namespace
}  // namespace corvanel
