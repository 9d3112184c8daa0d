// The floating panel through its real widgets: style groups and the window's top edge, the
// stored choices, meter-window counting, and the window buttons' hover rules on virtual time.
#include <gtest/gtest.h>

#include <QAction>
#include <QElapsedTimer>
#include <QMenu>
#include <QTest>

#include "AppTestRig.h"
#include "app/AppStyle.h"
#include "app/FramelessWindowChrome.h"
#include "app/PanelView.h"
#include "app/ShrinkingLabel.h"
#include "demo/DemoPlaylist.h"
#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel {
namespace {

using namespace std::chrono_literals;

class PanelViewTest : public ::testing::Test {
  protected:
    PanelViewTest() { rig.mac.settings->preset("spectrumEnabled", false); }

    // A panel window as the application opens it: identifier "panel", 500 × 300.
    PanelView& openPanel(const QString& identifier = "panel") {
        if (!rig.engine) rig.start();
        auto window =
            new AppWindow(identifier, "Corvanel", {500, 300}, FramelessWindowChrome::factory());
        auto panel = new PanelView(rig.environment(), window);
        window->setContent(panel);
        rig.windows->add(window);
        window->setGeometry(100, 120, 500, 300);
        window->show();
        rig.mac.executor->runUntilIdle();
        return *panel;
    }
    AppWindow& window() { return *rig.windows->firstWithIdentifierContaining("panel"); }
    bool buttonsVisible() { return window().chrome().windowButtonsVisible(); }
    void close(AppWindow* closing) {
        closing->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        rig.mac.executor->runUntilIdle();
    }
    bool settlesAtHeight(int height) {
        return QTest::qWaitFor([&] { return window().height() == height; }, 2000);
    }
    QAction* styleAction(const QString& title, PanelView& panel) {
        for (QAction* action : panel.styleMenu().actions())
            if (action->text() == title) return action;
        return nullptr;
    }

    testing::AppTestRig rig;
};

TEST_F(PanelViewTest, MovingBetweenGroupsResizesWithTheTopEdgeFixed) {
    PanelView& panel = openPanel();
    EXPECT_EQ(panel.meterStyle(), "bars");

    panel.chooseStyle("vu");
    panel.chooseStyle("tapedeck");
    QTest::qWait(PanelView::resizeAnimationMilliseconds + 50);
    EXPECT_EQ(window().geometry(), QRect(100, 120, 500, 300));

    panel.chooseStyle("ledrack");
    ASSERT_TRUE(settlesAtHeight(560));
    EXPECT_EQ(window().geometry(), QRect(100, 120, 500, 560));
    EXPECT_EQ(panel.minimumHeight(), 560);

    panel.chooseStyle("bars");
    ASSERT_TRUE(settlesAtHeight(300));
    EXPECT_EQ(window().geometry(), QRect(100, 120, 500, 300));
    EXPECT_EQ(rig.mac.settings->read("panelMeterStyle"), SettingValue(std::string("bars")));
}

TEST_F(PanelViewTest, TheSummaryRowShowsTheDetectionAndTheDevice) {
    PanelView& panel = openPanel();
    const auto text = [&](const char* name) {
        const auto* label = panel.findChild<ShrinkingLabel*>(name);
        return label ? label->text() : QStringLiteral("(no %1)").arg(name);
    };
    EXPECT_EQ(text("summaryDetectedText"), QString::fromUtf8("\u2014"));
    EXPECT_EQ(text("summaryDetectedSource"), "No track detected");
    EXPECT_EQ(text("summaryDeviceText"), QString::fromUtf8("48 kHz \u00b7 32-bit"));
    EXPECT_EQ(text("summaryDeviceName"), "Corvanel Demo DAC");

    rig.play("96000", "4608", "Apple Lossless audio file", audioCapabilitiesMessage(96, 24));
    rig.mac.executor->advanceBy(1s);
    EXPECT_EQ(text("summaryDetectedText"), QString::fromUtf8("96 kHz \u00b7 24-bit"));
    EXPECT_EQ(text("summaryDetectedSource"), "Apple Lossless audio file");
    EXPECT_EQ(text("summaryDeviceText"), QString::fromUtf8("96 kHz \u00b7 32-bit"));
}

TEST_F(PanelViewTest, AnUnknownStoredStyleIsCompactAndStaysUntilTheUserPicks) {
    rig.mac.settings->preset("panelMeterStyle", std::string("Bars"));
    PanelView& panel = openPanel();
    EXPECT_EQ(panel.meterStyle(), "Bars");
    for (QAction* action : panel.styleMenu().actions())
        EXPECT_FALSE(action->isChecked() && action->text() != "Always on top")
            << action->text().toStdString();
    EXPECT_TRUE(rig.mac.settings->writes().empty());

    styleAction("Inferno", panel)->trigger();
    ASSERT_TRUE(settlesAtHeight(560));
    EXPECT_EQ(window().y(), 120);
    EXPECT_TRUE(styleAction("Inferno", panel)->isChecked());
}

TEST_F(PanelViewTest, ChoosingTheCheckedStyleKeepsItCheckedWithoutResizing) {
    PanelView& panel = openPanel();
    QAction* bars = styleAction("Spectrum analyzer", panel);
    ASSERT_TRUE(bars->isChecked());
    bars->trigger();
    EXPECT_TRUE(bars->isChecked());
    QTest::qWait(PanelView::resizeAnimationMilliseconds + 50);
    EXPECT_EQ(window().geometry(), QRect(100, 120, 500, 300));
}

TEST_F(PanelViewTest, TheMenuListsTheStylesThenTheVisualizerThenAlwaysOnTop) {
    PanelView& panel = openPanel();
    QStringList titles;
    for (QAction* action : panel.styleMenu().actions())
        titles << (action->isSeparator() ? "-" : action->text());
    EXPECT_EQ(titles, (QStringList{"Spectrum analyzer", "Studio VU", "Boombox", "Tape Deck",
                                   "Futuristic Rack", "Vintage Console", "Pulsar", "Valhalla",
                                   "Inferno", "LED Rack", "Yamaha Classic", "-",
                                   "Candlelight Visualizer", "-", "Always on top"}));
    styleAction("Candlelight Visualizer", panel)->trigger();
    EXPECT_EQ(rig.openedWindows, std::vector<QString>{"visualizer"});
}

TEST_F(PanelViewTest, TheMenuUsesTheShellsFaceAndItsSeparatorsShow) {
    PanelView& panel = openPanel();
    QMenu& menu = panel.styleMenu();
    EXPECT_EQ(menu.font().family(), style::callout().family());
    menu.setPalette(style::darkPalette());  // as the application runs
    menu.adjustSize();
    const QImage shown = menu.grab().toImage();
    for (QAction* action : menu.actions()) {
        if (!action->isSeparator()) continue;
        const QRect line = menu.actionGeometry(action);
        const QColor background = shown.pixelColor(line.center().x(), line.top() - 2);
        int strongest = 0;
        for (int y = line.top(); y <= line.bottom(); ++y)
            strongest =
                std::max(strongest, std::abs(shown.pixelColor(line.center().x(), y).lightness() -
                                             background.lightness()));
        EXPECT_GE(strongest, 60) << "separator at y " << line.y();
    }
}

TEST_F(PanelViewTest, AlwaysOnTopIsStoredAndAppliedToTheWindow) {
    PanelView& panel = openPanel();
    QAction* onTop = styleAction("Always on top", panel);
    EXPECT_TRUE(onTop->isChecked());
    onTop->trigger();
    EXPECT_EQ(rig.mac.settings->read("panelAlwaysOnTop"), SettingValue(false));
    EXPECT_FALSE(window().chrome().isFloating());
    EXPECT_TRUE(window().isVisible());  // the new native window is shown again
    onTop->trigger();
    EXPECT_TRUE(window().chrome().isFloating());
    EXPECT_TRUE(window().windowFlags().testFlag(Qt::WindowStaysOnTopHint));
}

TEST_F(PanelViewTest, OpenPanelsKeepCaptureRunningUntilTheLastOneCloses) {
    openPanel("panel");
    SpectrumAnalyzer& spectrum = *rig.engine->spectrum();
    EXPECT_EQ(spectrum.visibleMeterWindows(), 1);
    EXPECT_TRUE(spectrum.isCapturing());
    openPanel("panel-second");
    EXPECT_EQ(spectrum.visibleMeterWindows(), 2);

    close(rig.windows->withIdentifier("panel"));
    EXPECT_EQ(spectrum.visibleMeterWindows(), 1);
    EXPECT_TRUE(spectrum.isCapturing());
    close(rig.windows->withIdentifier("panel-second"));
    EXPECT_EQ(spectrum.visibleMeterWindows(), 0);
    EXPECT_FALSE(spectrum.isCapturing());
}

TEST_F(PanelViewTest, TheButtonsHideOnTheNextTurnAfterTheyAppear) {
    rig.start();
    auto window = new AppWindow("panel", "Corvanel", {500, 300}, FramelessWindowChrome::factory());
    window->setContent(new PanelView(rig.environment(), window));
    rig.windows->add(window);
    window->show();
    EXPECT_TRUE(window->chrome().windowButtonsVisible());
    rig.mac.executor->runUntilIdle();
    EXPECT_FALSE(window->chrome().windowButtonsVisible());
    close(window);
}

TEST_F(PanelViewTest, LeavingIntoTheTitleStripKeepsTheButtonsUntilThePointerLeavesTheWindow) {
    PanelView& panel = openPanel();
    panel.handleHover(true);
    EXPECT_TRUE(buttonsVisible());

    rig.pointer = window().frameGeometry().topLeft() + QPoint(250, 5);
    panel.handleHover(false);
    rig.mac.executor->advanceBy(0.9s);  // polls at 0, 0.25, 0.5 and 0.75 s
    EXPECT_TRUE(buttonsVisible());

    rig.pointer = QPoint(2000, 2000);
    rig.mac.executor->advanceBy(0.05s);
    EXPECT_TRUE(buttonsVisible());  // the next poll, at 1 s, has not come yet
    rig.mac.executor->advanceBy(0.1s);
    EXPECT_FALSE(buttonsVisible());
    EXPECT_FALSE(panel.hasPendingHide());
}

TEST_F(PanelViewTest, LeavingTheWholeWindowHidesAtOnceAndReenteringCancelsAPendingHide) {
    PanelView& panel = openPanel();
    panel.handleHover(true);
    rig.pointer = QPoint(2000, 2000);
    panel.handleHover(false);
    rig.mac.executor->runUntilIdle();
    EXPECT_FALSE(buttonsVisible());

    panel.handleHover(true);
    rig.pointer = window().frameGeometry().topLeft() + QPoint(250, 5);
    panel.handleHover(false);
    rig.mac.executor->advanceBy(0.1s);
    panel.handleHover(true);
    EXPECT_FALSE(panel.hasPendingHide());
    rig.pointer = QPoint(2000, 2000);
    rig.mac.executor->advanceBy(2s);
    EXPECT_TRUE(buttonsVisible());
}

TEST_F(PanelViewTest, WithoutAPanelWindowHoverDoesNothing) {
    rig.start();
    PanelView loose(rig.environment());
    loose.handleHover(true);
    loose.handleHover(false);
    rig.mac.executor->advanceBy(1s);
    EXPECT_FALSE(loose.hasPendingHide());
    loose.resizePanel("bars", "inferno");
    EXPECT_EQ(loose.minimumHeight(), 560);
}

TEST(FramelessWindowChromeTest, ButtonsFadeOverAQuarterSecond) {
    testing::guiApplication();
    QWidget window;
    FramelessWindowChrome chrome(window);
    window.show();
    EXPECT_EQ(chrome.windowButtonsOpacity(), 1.0);
    QElapsedTimer fading;
    fading.start();
    chrome.setWindowButtonsVisible(false);
    bool seenMidway = false;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            const qreal opacity = chrome.windowButtonsOpacity();
            seenMidway = seenMidway || (opacity > 0.0 && opacity < 1.0);
            return opacity == 0.0;
        },
        2000));
    EXPECT_TRUE(seenMidway);
    // Qt's animation clock may count its first tick from before the start; allow for it.
    EXPECT_GE(fading.elapsed(), 150);
    // Only the opacity changed: the buttons are still there, where they were.
    EXPECT_NE(window.findChild<QWidget*>("closeButton"), nullptr);
    EXPECT_TRUE(window.findChild<QWidget*>("zoomButton")->isVisible());
}

}  // namespace
}  // namespace corvanel
