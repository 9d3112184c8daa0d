#include <gtest/gtest.h>

#include <QImage>

#include "AppTestRig.h"
#include "app/CandlelightSnapshot.h"
#include "app/CandlelightView.h"
#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel::testing {
namespace {

constexpr double frameTime = 785'000'000.5;

struct VisualizerRig {
    AppTestRig rig;
    std::shared_ptr<SpectrumAnalyzer> analyzer;

    VisualizerRig() {
        rig.start();
        analyzer = rig.engine->spectrum();
    }
    std::unique_ptr<CandlelightView> makeView() {
        auto view = std::make_unique<CandlelightView>(analyzer, [] { return frameTime; });
        view->resize(320, 200);
        return view;
    }
};

TEST(CandlelightView, CountsAsAVisibleMeterWindowWhileShown) {
    VisualizerRig v;
    const std::int64_t before = v.analyzer->visibleMeterWindows();
    auto view = v.makeView();
    EXPECT_EQ(v.analyzer->visibleMeterWindows(), before);
    EXPECT_FALSE(view->isAnimating());

    view->show();
    EXPECT_EQ(v.analyzer->visibleMeterWindows(), before + 1);
    EXPECT_TRUE(view->isAnimating());
    view->show();  // already shown: counted once
    EXPECT_EQ(v.analyzer->visibleMeterWindows(), before + 1);

    view->hide();
    EXPECT_EQ(v.analyzer->visibleMeterWindows(), before);
    EXPECT_FALSE(view->isAnimating());

    view->show();
    EXPECT_EQ(v.analyzer->visibleMeterWindows(), before + 1);
    view.reset();  // closed while on screen
    EXPECT_EQ(v.analyzer->visibleMeterWindows(), before);
}

TEST(CandlelightView, KeepsCaptureRunningWhileOnScreen) {
    VisualizerRig v;
    v.analyzer->setMenuBarEnabled(false);
    v.rig.mac.executor->runUntilIdle();
    ASSERT_FALSE(v.analyzer->isCapturing());
    auto view = v.makeView();
    view->show();
    v.rig.mac.executor->runUntilIdle();
    EXPECT_TRUE(v.analyzer->isCapturing());
    view->hide();
    v.rig.mac.executor->runUntilIdle();
    EXPECT_FALSE(v.analyzer->isCapturing());
}

TEST(CandlelightView, DrawsTheSceneForTheAnalyzersLevelsAtItsClockTime) {
    VisualizerRig v;
    auto view = v.makeView();
    view->show();
    const QImage shown = view->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QImage expected =
        renderCandlelightSnapshot(v.analyzer->levels(), frameTime, QSizeF(320, 200), 1.0)
            .convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(shown, expected);
}

}  // namespace
}  // namespace corvanel::testing
