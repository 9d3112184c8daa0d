// The application's own StatusNotifierItem on a private session bus, read by a watcher and a host
// of the test's own the way a desktop's tray reads it: registration and re-registration, the
// title as title, tooltip and text label, the icon's bytes, and clicks.
#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTest>
#include <memory>

#include "AppLaunch.h"
#include "DBusTestBus.h"
#include "DesktopTheme.h"
#include "TestTray.h"
#include "app/AppStyle.h"
#include "app/DesktopPalette.h"
#include "app/PopupWindow.h"
#include "app/linux/StatusNotifierItem.h"
#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;

constexpr int waitMilliseconds = 5000;
const QColor themeText(0x10, 0x60, 0xc0);

using testing::desktopTheme;

struct Pixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;

    // Pixels whose four bytes, in order, are exactly `quad`.
    int count(const std::array<uchar, 4>& quad) const {
        int found = 0;
        for (qsizetype i = 0; i + 3 < bytes.size(); i += 4)
            found += std::equal(quad.begin(), quad.end(),
                                reinterpret_cast<const uchar*>(bytes.constData()) + i);
        return found;
    }
};

// An a(iiay) value as a host takes it apart.
std::vector<Pixmap> pixmapsIn(const QDBusArgument& argument) {
    std::vector<Pixmap> pixmaps;
    argument.beginArray();
    while (!argument.atEnd()) {
        Pixmap pixmap;
        argument.beginStructure();
        argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
        argument.endStructure();
        pixmaps.push_back(pixmap);
    }
    argument.endArray();
    return pixmaps;
}

struct ToolTip {
    QString iconName;
    std::vector<Pixmap> icons;
    QString title;
    QString text;
};

ToolTip toolTipIn(const QDBusArgument& argument) {
    ToolTip toolTip;
    argument.beginStructure();
    argument >> toolTip.iconName;
    toolTip.icons = pixmapsIn(argument);
    argument >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return toolTip;
}

class StatusNotifierItemTest : public ::testing::Test {
  protected:
    StatusNotifierItemTest() : saved(QGuiApplication::palette()) {
        QGuiApplication::setPalette(desktopTheme(themeText, Qt::white));
        desktop = std::make_shared<DesktopPalette>(style::darkPalette());
        launcher.labelInterval = Seconds{1.0 / trayLabelsPerSecond};
        launcher.makeItem = [this] {
            auto made = std::make_unique<StatusNotifierItem>(
                QDBusConnection::connectToBus(QString::fromStdString(bus.address()),
                                              itemConnection),
                desktop);
            item = made.get();
            return made;
        };
    }
    ~StatusNotifierItemTest() override {
        launcher.app.reset();
        QDBusConnection::disconnectFromBus(itemConnection);
        desktop.reset();
        QGuiApplication::setPalette(saved);
    }

    void SetUp() override {
        ASSERT_EQ(bus.failure(), "");
        ASSERT_EQ(watcher.start(), "");
    }

    // The application with its item on the bus, once the watcher knows the item.
    MyApp& launch() {
        MyApp& app = launcher.launch();
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return !watcher.registrations.isEmpty(); }, waitMilliseconds));
        return app;
    }

    QString service() const { return item->serviceName(); }

    // `frames` ticks of the analysis with music playing, about 30 a second of virtual time.
    void play(int frames) {
        for (int frame = 0; frame < frames; ++frame) {
            for (int block = 0; block < 3; ++block)
                launcher.rig.mac.taps->deliverBlock();
            launcher.rig.mac.executor->advanceBy(33ms);
            QCoreApplication::processEvents();
        }
    }

    std::vector<Pixmap> icon() {
        const QVariant value = host.property(service(), "IconPixmap");
        EXPECT_EQ(value.value<QDBusArgument>().currentSignature(), "a(iiay)");
        return pixmapsIn(value.value<QDBusArgument>());
    }

    QPalette saved;
    testing::DBusTestBus bus;
    testing::TestStatusNotifierWatcher watcher{bus.address()};
    testing::TestTrayHost host{bus.address()};
    std::shared_ptr<DesktopPalette> desktop;
    QString itemConnection = "corvanel-test-item";
    testing::AppLaunch launcher;
    StatusNotifierItem* item = nullptr;
};

TEST_F(StatusNotifierItemTest, RegistersWithTheWatcherAgainAfterItRestartsAndLeavesWithTheApp) {
    launch();
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(QRegularExpression("^org\\.kde\\.StatusNotifierItem-" +
                                   QString::number(QCoreApplication::applicationPid()) + "-\\d+$")
                    .match(service())
                    .hasMatch())
        << service().toStdString();
    EXPECT_EQ(watcher.registrations, QStringList{service()});
    EXPECT_EQ(host.servicesStartingWith("org.kde.StatusNotifierItem-"), QStringList{service()});
    EXPECT_EQ(host.property(service(), "Status").toString(), "Active");
    EXPECT_EQ(host.property(service(), "Category").toString(), "ApplicationStatus");
    EXPECT_EQ(host.property(service(), "Id").toString(), "com.corvanel.Corvanel");
    EXPECT_EQ(host.property(service(), "ItemIsMenu").toBool(), false);
    EXPECT_EQ(host.property(service(), "Menu").value<QDBusObjectPath>().path(), "/NO_DBUSMENU");
    // Hosts that introspect the item find the structured types and the label's signal.
    const QDBusMessage introspection = host.callAndWait(QDBusMessage::createMethodCall(
        service(), "/StatusNotifierItem", "org.freedesktop.DBus.Introspectable", "Introspect"));
    ASSERT_EQ(introspection.type(), QDBusMessage::ReplyMessage);
    const QString xml = introspection.arguments().value(0).toString();
    for (const char* expected :
         {R"x(<interface name="org.kde.StatusNotifierItem">)x",
          R"x(<property name="IconPixmap" type="a(iiay)" access="read")x",
          R"x(<property name="ToolTip" type="(sa(iiay)ss)" access="read")x",
          R"x(<property name="XAyatanaLabel" type="s" access="read")x",
          R"x(<signal name="XAyatanaNewLabel">)x", R"x(<method name="Activate">)x"})
        EXPECT_TRUE(xml.contains(QLatin1String(expected))) << expected << "\n" << xml.toStdString();

    // The desktop shell restarts: its new watcher hears of the item again.
    watcher.stop();
    ASSERT_EQ(watcher.start(), "");
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return watcher.registrations.size() == 2; }, waitMilliseconds));
    EXPECT_EQ(watcher.registrations.back(), service());

    launcher.app.reset();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return host.servicesStartingWith("org.kde.StatusNotifierItem-").isEmpty(); },
        waitMilliseconds));
}

TEST_F(StatusNotifierItemTest, TheTitleIsTheLabelTooltipAndTitleAndIsSentOnceNotPerFrame) {
    launcher.rig.mac.settings->preset("spectrumEnabled", true);
    MyApp& app = launch();
    ASSERT_TRUE(host.listen(service()));
    const QString title = QString::fromStdString(app.environment().engine->menuBarTitle());
    EXPECT_TRUE(QRegularExpression("^\\d+(\\.\\d)? kHz").match(title).hasMatch())
        << title.toStdString();
    EXPECT_EQ(host.property(service(), "XAyatanaLabel").toString(), title);
    EXPECT_EQ(host.property(service(), "Title").toString(), title);
    const QVariant toolTip = host.property(service(), "ToolTip");
    EXPECT_EQ(toolTip.value<QDBusArgument>().currentSignature(), "(sa(iiay)ss)");
    const ToolTip shown = toolTipIn(toolTip.value<QDBusArgument>());
    EXPECT_EQ(shown.title, "Corvanel");
    EXPECT_EQ(shown.text, title);
    // The guide is at least as wide as any title, so a host can keep the label's width.
    const QString guide = host.property(service(), "XAyatanaLabelGuide").toString();
    EXPECT_GE(guide.size(), QString::fromUtf8("176.4 kHz \u00b7 24-bit").size());

    // Two seconds of music: the icon follows at most ten times a second, the text not at all.
    play(60);
    host.roundTrip(service());
    EXPECT_GE(host.count("NewIcon"), 10);
    EXPECT_LE(host.count("NewIcon"), 21);
    EXPECT_EQ(host.count("XAyatanaNewLabel"), 0);
    EXPECT_EQ(host.count("NewTitle"), 0);

    // The device changes its rate: one new label, title and tooltip, while the icon goes on.
    launcher.rig.mac.audio->changeNominalRateExternally(launcher.rig.dac, 96000);
    play(30);
    host.roundTrip(service());
    EXPECT_EQ(host.count("XAyatanaNewLabel"), 1);
    EXPECT_EQ(host.last("XAyatanaNewLabel").arguments(), (QVariantList{"96 kHz", guide}));
    EXPECT_EQ(host.count("NewTitle"), 1);
    EXPECT_EQ(host.count("NewToolTip"), 1);
    EXPECT_EQ(host.property(service(), "XAyatanaLabel").toString(), "96 kHz");
    EXPECT_EQ(toolTipIn(host.property(service(), "ToolTip").value<QDBusArgument>()).text, "96 kHz");
}

TEST_F(StatusNotifierItemTest, TheIconIsInTheDesktopsTextColourInNetworkByteOrderAndFollowsIt) {
    launch();
    ASSERT_TRUE(host.listen(service()));
    std::vector<Pixmap> pixmaps = icon();
    ASSERT_EQ(pixmaps.size(), 2u);
    EXPECT_EQ(pixmaps[0].width, 22);
    EXPECT_EQ(pixmaps[1].width, 44);
    for (const Pixmap& pixmap : pixmaps) {
        SCOPED_TRACE(pixmap.width);
        EXPECT_EQ(pixmap.height, pixmap.width);
        ASSERT_EQ(pixmap.bytes.size(), pixmap.width * pixmap.height * 4);
    }
    // Alpha, red, green, blue: the digits' solid pixels are the theme's text colour. Read the
    // other way round (a little-endian word) they would be blue, green, red, alpha.
    const std::array<uchar, 4> ink{0xff, 0x10, 0x60, 0xc0};
    EXPECT_GE(pixmaps[1].count(ink), 40);
    EXPECT_GE(pixmaps[0].count(ink), 4);
    EXPECT_EQ(pixmaps[1].count({0xc0, 0x60, 0x10, 0xff}), 0);

    // The desktop switches to a dark scheme: a new icon, in its text colour.
    const int before = host.count("NewIcon");
    QGuiApplication::setPalette(desktopTheme(QColor(0xe0, 0xf0, 0x20), QColor(0x20, 0x20, 0x20)));
    launcher.rig.mac.executor->advanceBy(1s);
    host.roundTrip(service());
    EXPECT_EQ(host.count("NewIcon"), before + 1);
    pixmaps = icon();
    ASSERT_EQ(pixmaps.size(), 2u);
    EXPECT_GE(pixmaps[1].count({0xff, 0xe0, 0xf0, 0x20}), 40);
    EXPECT_EQ(pixmaps[1].count(ink), 0);
}

TEST_F(StatusNotifierItemTest, ActivateAndContextMenuOpenThePopupBelowTheClick) {
    MyApp& app = launch();
    PopupWindow& popup = app.popup();
    host.call(service(), "Activate", {500, 30});
    ASSERT_TRUE(QTest::qWaitFor([&] { return popup.isVisible(); }, waitMilliseconds));
    QCoreApplication::processEvents();
    EXPECT_GT(popup.y(), 30);
    EXPECT_NEAR(popup.geometry().center().x(), 500, 2);
    EXPECT_EQ(item->geometry(), QRect(500, 30, 1, 1));

    // The closing click on the item; then a right click opens it as a click does.
    host.call(service(), "Activate", {500, 30});
    EXPECT_FALSE(popup.isVisible());
    QTest::qWait(PopupWindow::reopenGuardMilliseconds + 50);
    host.call(service(), "ContextMenu", {500, 30});
    EXPECT_TRUE(popup.isVisible());
    popup.hide();

    // A middle click does nothing; a host that does not know where the click was says (0, 0).
    QTest::qWait(PopupWindow::reopenGuardMilliseconds + 50);
    host.call(service(), "SecondaryActivate", {500, 30});
    EXPECT_FALSE(popup.isVisible());
    host.call(service(), "Activate", {0, 0});
    EXPECT_TRUE(popup.isVisible());
    EXPECT_TRUE(item->geometry().isEmpty());
    popup.hide();
}

}  // namespace
}  // namespace corvanel
