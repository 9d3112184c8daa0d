// The application composed on a simulated Mac: the window levels it opens with, the status
// item's popup and label, and meter-window counting through the real windows.
#include <gtest/gtest.h>

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QTest>

#include "AppLaunch.h"
#include "app/ContentView.h"
#include "app/MenuBarLabel.h"
#include "app/PopupWindow.h"
#include "meters/styles/SpectrumBarsView.h"
#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel {
namespace {

class MyAppTest : public ::testing::Test, protected testing::AppLaunch {};

TEST_F(MyAppTest, ThePanelFloatsUnlessTheStoredChoiceSaysOtherwise) {
    launch();
    // The newest copy asks older ones to quit, once, as it starts.
    EXPECT_EQ(rig.workspace->olderCopiesAskedToQuit, 1);
    AppWindow* panel = app->openWindow("panel");
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->windowTitle(), "Corvanel");
    EXPECT_EQ(panel->size(), QSize(500, 300));
    EXPECT_TRUE(panel->chrome().isFloating());
    closeWindow("panel");

    rig.mac.settings->preset("panelAlwaysOnTop", false);
    EXPECT_FALSE(app->openWindow("panel")->chrome().isFloating());
    // A stored text is not a boolean: the default holds.
    closeWindow("panel");
    rig.mac.settings->preset("panelAlwaysOnTop", std::string("false"));
    EXPECT_TRUE(app->openWindow("panel")->chrome().isFloating());
}

TEST_F(MyAppTest, TheVisualizerWindowAndReopeningBringsTheSameWindowForward) {
    launch();
    AppWindow* visualizer = app->openWindow("visualizer");
    ASSERT_NE(visualizer, nullptr);
    EXPECT_EQ(visualizer->windowTitle(), "Candlelight");
    EXPECT_EQ(visualizer->size(), QSize(960, 600));
    EXPECT_EQ(app->openWindow("visualizer"), visualizer);
    EXPECT_EQ(app->openWindow("elsewhere"), nullptr);
}

TEST_F(MyAppTest, MeterWindowsStartCaptureAndClosingTheLastStopsIt) {
    rig.mac.settings->preset("spectrumEnabled", false);
    launch();
    SpectrumAnalyzer& spectrum = *app->environment().engine->spectrum();
    EXPECT_FALSE(spectrum.isCapturing());
    app->openWindow("panel");
    rig.mac.executor->runUntilIdle();
    EXPECT_TRUE(spectrum.isCapturing());
    app->openWindow("visualizer");
    rig.mac.executor->runUntilIdle();
    EXPECT_EQ(spectrum.visibleMeterWindows(), 2);
    closeWindow("panel");
    EXPECT_TRUE(spectrum.isCapturing());
    closeWindow("visualizer");
    EXPECT_EQ(spectrum.visibleMeterWindows(), 0);
    EXPECT_FALSE(spectrum.isCapturing());
}

TEST_F(MyAppTest, ClickingTheItemOpensThePopupBelowItAndTheClosingClickDoesNotReopen) {
    launch();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->insertions, std::vector<bool>{true});
    item->onActivated();
    ASSERT_TRUE(app->popup().isVisible());
    EXPECT_GT(app->popup().y(), item->where.bottom());
    QCoreApplication::processEvents();  // the layout's pass after showing
    EXPECT_EQ(app->popup().width(), ContentView::contentWidth);

    item->onActivated();  // the click on the item while open closes it
    EXPECT_FALSE(app->popup().isVisible());
    item->onActivated();  // the same click reported again as the popup went away
    EXPECT_FALSE(app->popup().isVisible());
    QTest::qWait(PopupWindow::reopenGuardMilliseconds + 50);
    item->onActivated();
    EXPECT_TRUE(app->popup().isVisible());
    app->popup().hide();
}

TEST_F(MyAppTest, TheLabelFollowsTheTitleAndTheLiveImageChoice) {
    rig.mac.settings->preset("spectrumEnabled", false);
    launch();
    const auto& engine = app->environment().engine;
    ASSERT_FALSE(item->images.empty());
    EXPECT_EQ(item->images.back(),
              meters::SpectrumBarsView::menuBarImage(QString::fromStdString(engine->menuBarTitle()),
                                                     std::nullopt));
    engine->spectrum()->setMenuBarEnabled(true);
    rig.mac.executor->runUntilIdle();
    EXPECT_EQ(item->images.back(),
              meters::SpectrumBarsView::menuBarImage(QString::fromStdString(engine->menuBarTitle()),
                                                     engine->spectrum()->levels()));
    const std::size_t before = item->images.size();
    rig.mac.audio->changeNominalRateExternally(rig.dac, 96000);
    rig.mac.executor->runUntilIdle();
    EXPECT_GT(item->images.size(), before);
    EXPECT_EQ(app->label().image(), meters::SpectrumBarsView::menuBarImage(
                                        QString::fromUtf8("96 kHz"), engine->spectrum()->levels()));
}

TEST_F(MyAppTest, WithoutTheItemsPlaceThePopupOpensAtTheTopRightOrAtTheClick) {
    launch();
    PopupWindow& popup = app->popup();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    // `--open popup` at start, before the tray has embedded its icon: (0, 0, 22, 22).
    for (const QRect& unknown : {QRect(0, 0, 22, 22), QRect()}) {
        popup.openBelow(unknown);
        QCoreApplication::processEvents();
        EXPECT_EQ(popup.geometry().right(), screen.right());
        EXPECT_LT(popup.y() - screen.top(), 10);
        popup.hide();
    }
    // A click on an item whose place the tray does not report: the pointer is on it.
    QTest::qWait(PopupWindow::reopenGuardMilliseconds + 50);
    QCursor::setPos(screen.center());
    item->where = QRect();
    item->onActivated();
    QCoreApplication::processEvents();
    EXPECT_EQ(popup.geometry().center().x(), screen.center().x());
    EXPECT_GT(popup.y(), screen.center().y());
    popup.hide();
}

TEST(PopupPlacementTest, BelowTheItemCentredAndKeptOnTheScreen) {
    const QRect screen(0, 0, 1600, 1000);
    EXPECT_EQ(PopupWindow::placement(QRect(700, 0, 100, 24), QSize(340, 500), screen),
              QPoint(580, 28));
    // At the right edge the popup slides left to stay whole.
    EXPECT_EQ(PopupWindow::placement(QRect(1560, 0, 40, 24), QSize(340, 500), screen),
              QPoint(1260, 28));
    // A tray at the bottom of the screen: the popup opens above the item.
    EXPECT_EQ(PopupWindow::placement(QRect(700, 976, 100, 24), QSize(340, 500), screen),
              QPoint(580, 472));
}

TEST_F(MyAppTest, ClosingTheAppEndsTheEngineEvenWithItsStartUpScanStillReading) {
    rig.mac.executor->setBackgroundDuration(std::chrono::hours(1));
    launch();
    app->openWindow("panel");
    const std::weak_ptr<SwitcherEngine> engine = app->environment().engine;
    app.reset();
    EXPECT_TRUE(engine.expired());
    EXPECT_EQ(rig.mac.executor->pendingCount(), 0u);
}

}  // namespace
}  // namespace corvanel
