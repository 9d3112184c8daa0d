// The application composed on a simulated Mac: the window levels it opens with, the status
// item's popup and label, and meter-window counting through the real windows.
#include <gtest/gtest.h>

#include <QTest>

#include "AppTestRig.h"
#include "app/ContentView.h"
#include "app/FramelessWindowChrome.h"
#include "app/MenuBarLabel.h"
#include "app/MyApp.h"
#include "app/PopupWindow.h"
#include "meters/SpectrumBarsView.h"
#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel {
namespace {

// A status item that remembers what it was given.
class RecordingStatusItem final : public StatusItem {
  public:
    std::vector<QImage> images;
    std::vector<bool> insertions;
    QRect where{600, 0, 80, 24};

    void setLabelImage(const QImage& image) override { images.push_back(image); }
    void setInserted(bool inserted) override { insertions.push_back(inserted); }
    QRect geometry() const override { return where; }
};

class MyAppTest : public ::testing::Test {
  protected:
    MyApp& launch() {
        Composition composition;
        composition.ports = rig.mac.ports();
        composition.ports.workspace = rig.workspace;
        composition.windowChrome = FramelessWindowChrome::factory();
        composition.makeStatusItem = [this] {
            auto item = std::make_unique<RecordingStatusItem>();
            item_ = item.get();
            return StatusItemChoice{std::move(item), Seconds{0}};
        };
        app = std::make_unique<MyApp>(std::move(composition));
        app->start();
        rig.mac.executor->runUntilIdle();
        return *app;
    }
    void closeWindow(const QString& identifier) {
        app->environment().windows->withIdentifier(identifier)->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        rig.mac.executor->runUntilIdle();
    }

    testing::AppTestRig rig;
    std::unique_ptr<MyApp> app;
    RecordingStatusItem* item_ = nullptr;
};

TEST_F(MyAppTest, ThePanelFloatsUnlessTheStoredChoiceSaysOtherwise) {
    launch();
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
    ASSERT_NE(item_, nullptr);
    EXPECT_EQ(item_->insertions, std::vector<bool>{true});
    item_->onActivated();
    ASSERT_TRUE(app->popup().isVisible());
    EXPECT_GT(app->popup().y(), item_->where.bottom());
    EXPECT_EQ(app->popup().width(), ContentView::contentWidth);

    item_->onActivated();  // the click on the item while open closes it
    EXPECT_FALSE(app->popup().isVisible());
    item_->onActivated();  // the same click reported again as the popup went away
    EXPECT_FALSE(app->popup().isVisible());
    QTest::qWait(PopupWindow::reopenGuardMilliseconds + 50);
    item_->onActivated();
    EXPECT_TRUE(app->popup().isVisible());
    app->popup().hide();
}

TEST_F(MyAppTest, TheLabelFollowsTheTitleAndTheLiveImageChoice) {
    rig.mac.settings->preset("spectrumEnabled", false);
    launch();
    const auto& engine = app->environment().engine;
    ASSERT_FALSE(item_->images.empty());
    EXPECT_EQ(item_->images.back(),
              meters::SpectrumBarsView::menuBarImage(QString::fromStdString(engine->menuBarTitle()),
                                                     std::nullopt));
    engine->spectrum()->setMenuBarEnabled(true);
    rig.mac.executor->runUntilIdle();
    EXPECT_EQ(item_->images.back(),
              meters::SpectrumBarsView::menuBarImage(QString::fromStdString(engine->menuBarTitle()),
                                                     engine->spectrum()->levels()));
    const std::size_t before = item_->images.size();
    rig.mac.audio->changeNominalRateExternally(rig.dac, 96000);
    rig.mac.executor->runUntilIdle();
    EXPECT_GT(item_->images.size(), before);
    EXPECT_EQ(app->label().image(), meters::SpectrumBarsView::menuBarImage(
                                        QString::fromUtf8("96 kHz"), engine->spectrum()->levels()));
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
