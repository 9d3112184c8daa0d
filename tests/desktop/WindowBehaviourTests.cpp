// The shell's windows on a real X desktop with a window manager: what offscreen drawing cannot
// show (minimise and restore, decorations, maximise, the pointer entering from outside).
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCursor>
#include <QTest>
#include <algorithm>

#include "AppLaunch.h"
#include "app/ContentView.h"
#include "app/PanelView.h"
#include "app/PopupWindow.h"
#include "app/WindowButton.h"
#include "app/WindowStatusItem.h"
#include "spectrum/SpectrumAnalyzer.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

constexpr int settleMilliseconds = 5000;

class WindowBehaviourTest : public ::testing::Test, protected testing::AppLaunch {
  protected:
    static bool settles(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, settleMilliseconds);
    }
};

TEST_F(WindowBehaviourTest, OpeningAMinimisedWindowRestoresRaisesAndFocusesIt) {
    launch();
    for (const QString identifier : {"panel", "visualizer"}) {
        SCOPED_TRACE(identifier.toStdString());
        AppWindow* window = app->openWindow(identifier);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
        window->showMinimized();
        ASSERT_TRUE(settles([&] { return !window->windowHandle()->isExposed(); }));

        EXPECT_EQ(app->openWindow(identifier), window);
        EXPECT_TRUE(settles([&] { return window->windowHandle()->isExposed(); }));
        EXPECT_FALSE(window->isMinimized());
        EXPECT_TRUE(QTest::qWaitForWindowActive(window, settleMilliseconds));
    }
}

TEST_F(WindowBehaviourTest, TheLabelWindowHasNoCloseButtonAndClosingItAnywayQuits) {
    makeItem = [] { return std::make_unique<WindowStatusItem>(); };
    launch();
    QWidget& label = static_cast<WindowStatusItem&>(app->statusItem()).window();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&label));
    // The window manager drew no title bar (and so no close button) around it.
    EXPECT_TRUE(settles([&] { return label.frameGeometry() == label.geometry(); }))
        << "frame " << label.frameGeometry().height() << " px high around "
        << label.geometry().height() << " px";
    EXPECT_TRUE(label.windowFlags().testFlag(Qt::WindowStaysOnTopHint));

    EXPECT_EQ(quits, 0);
    // What a window manager's close shortcut sends.
    label.windowHandle()->close();
    EXPECT_EQ(quits, 1);
}

TEST_F(WindowBehaviourTest, ThePopupIsLaidOut340WideAndOpensInTheSamePlaceEveryTime) {
    launch();
    item->where = QRect(900, 0, 80, 24);
    PopupWindow& popup = app->popup();
    std::vector<QRect> openings;
    for (int i = 0; i < 3; ++i) {
        item->onActivated();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&popup));
        QTest::qWait(100);  // the layout's own pass, after the window is shown
        openings.push_back(popup.geometry());
        popup.hide();
        QTest::qWait(PopupWindow::reopenGuardMilliseconds + 20);
    }
    EXPECT_EQ(openings[0].width(), 340);
    // Centred below the item: 940 - 340 / 2.
    EXPECT_EQ(openings[0].x(), 770);
    EXPECT_EQ(openings[1], openings[0]);
    EXPECT_EQ(openings[2], openings[0]);

    // Rows that come and go change the height only.
    item->onActivated();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&popup));
    const int before = popup.height();
    app->environment().engine->spectrum()->setMenuBarEnabled(
        !app->environment().engine->spectrum()->menuBarEnabled());
    EXPECT_TRUE(settles([&] { return popup.height() != before; }));
    EXPECT_EQ(popup.width(), 340);
    popup.hide();
}

TEST_F(WindowBehaviourTest, AStyleChangeWhileZoomedLeavesTheZoomAndResizesTheNormalWindow) {
    launch();
    AppWindow* window = app->openWindow("panel");
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    window->setGeometry(200, 150, 500, 300);
    ASSERT_TRUE(settles([&] { return window->geometry() == QRect(200, 150, 500, 300); }));
    auto* panel = static_cast<PanelView*>(window->content());

    const auto zoomAndChoose = [&](const QString& style) {
        window->findChild<QAbstractButton*>("zoomButton")->click();
        ASSERT_TRUE(settles([&] { return window->isMaximized() && window->width() > 1000; }));
        const QRect zoomed = window->geometry();
        panel->chooseStyle(style);
        QTest::qWait(PanelView::resizeAnimationMilliseconds + 100);
        EXPECT_EQ(window->geometry(), zoomed);
        EXPECT_TRUE(window->isMaximized());
        window->findChild<QAbstractButton*>("zoomButton")->click();
    };

    zoomAndChoose("ledrack");
    EXPECT_TRUE(settles([&] { return window->geometry() == QRect(200, 150, 500, 560); }))
        << "restored to " << window->geometry().width() << " x " << window->geometry().height();
    zoomAndChoose("vu");
    EXPECT_TRUE(settles([&] { return window->geometry() == QRect(200, 150, 500, 300); }))
        << "restored to " << window->geometry().width() << " x " << window->geometry().height();
}

TEST_F(WindowBehaviourTest, ThePointerArrivingStraightOnTheWindowButtonsShowsThem) {
    launch();
    AppWindow* window = app->openWindow("panel");
    window->setGeometry(200, 150, 500, 300);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    // Where the window manager has put it, before aiming at its buttons.
    ASSERT_TRUE(settles([&] { return window->geometry() == QRect(200, 150, 500, 300); }));
    QCursor::setPos(900, 700);
    // The pointer itself drives the hide task here, in real time.
    ASSERT_TRUE(settles([&] {
        rig.mac.executor->runUntilIdle();
        return !window->chrome().windowButtonsVisible();
    }));

    const auto* close = window->findChild<QWidget*>("closeButton");
    QCursor::setPos(close->mapToGlobal(close->rect().center()));
    EXPECT_TRUE(settles([&] { return window->chrome().windowButtonsVisible(); }));
    // Over one button, all three show their symbols.
    const auto buttons = window->findChildren<WindowButton*>();
    ASSERT_EQ(buttons.size(), 3);
    EXPECT_TRUE(settles([&] {
        return std::all_of(buttons.begin(), buttons.end(),
                           [](const WindowButton* button) { return button->glyphShown(); });
    }));

    QCursor::setPos(900, 700);
    EXPECT_TRUE(settles([&] {
        rig.mac.executor->advanceBy(std::chrono::milliseconds(250));
        return !window->chrome().windowButtonsVisible();
    }));
    EXPECT_TRUE(settles([&] { return !buttons[1]->glyphShown(); }));
}

}  // namespace
}  // namespace corvanel
