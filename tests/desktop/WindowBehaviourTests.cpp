// The shell's windows on a real X desktop with a window manager: what offscreen drawing cannot
// show (minimise and restore, decorations, maximise, the pointer entering from outside).
#include <gtest/gtest.h>

#include <QTest>

#include "AppLaunch.h"
#include "app/ContentView.h"
#include "app/PopupWindow.h"
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

}  // namespace
}  // namespace corvanel
