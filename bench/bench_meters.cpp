// One frame of each panel style at the panel's size for its height group, and one menu-bar label
// image. Each frame gets new analyzer values and a 60 Hz spring step, as in the running panel.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cmath>
#include <memory>
#include <vector>

#include "app/MeterRendererFactory.h"
#include "app/PanelMeterStyle.h"
#include "meters/MeterValues.h"
#include "meters/SpectrumBarsView.h"

namespace {

using corvanel::PanelHeightGroup;
using corvanel::PanelMeterStyle;
using corvanel::meters::MeterValues;

// Two alternating sets of music-like values, so every frame draws a change.
MeterValues valuesForFrame(int frame) {
    MeterValues values;
    for (int i = 0; i < 40; ++i) {
        const double level = 0.45 + 0.35 * std::sin(i * 0.37 + frame * 0.9);
        values.levels.push_back(static_cast<float>(level));
        values.peaks.push_back(static_cast<float>(std::min(1.0, level + 0.12)));
    }
    values.left = static_cast<float>(0.6 + 0.2 * std::sin(frame * 1.3));
    values.right = static_cast<float>(0.55 + 0.2 * std::cos(frame * 1.1));
    return values;
}

void panelStyleFrame(benchmark::State& state, PanelMeterStyle style) {
    const QSize size =
        style.heightGroup() == PanelHeightGroup::tall ? QSize(500, 560) : QSize(500, 300);
    QImage target(size, QImage::Format_ARGB32_Premultiplied);
    const std::unique_ptr<corvanel::meters::MeterRenderer> renderer =
        corvanel::makeMeterRenderer(style);
    const MeterValues frames[] = {valuesForFrame(0), valuesForFrame(1)};
    int frame = 0;
    for (auto _ : state) {
        renderer->setValues(frames[frame++ % 2]);
        renderer->step(1.0 / 60);
        target.fill(Qt::transparent);
        QPainter painter(&target);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer->paint(painter, QSizeF(size));
        painter.end();
        benchmark::DoNotOptimize(target.constBits());
    }
}

void labelImage(benchmark::State& state) {
    const std::vector<float> frames[] = {valuesForFrame(0).levels, valuesForFrame(1).levels};
    int frame = 0;
    for (auto _ : state) {
        const QImage image = corvanel::meters::SpectrumBarsView::menuBarImage(
            QStringLiteral("44.1 kHz"), frames[frame++ % 2]);
        benchmark::DoNotOptimize(image.constBits());
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtArgc = 1;
    QGuiApplication application(qtArgc, argv);
    for (const PanelMeterStyle style : PanelMeterStyle::allCases()) {
        const std::string name = "PanelStyleFrame/" + std::string(style.rawValue());
        benchmark::RegisterBenchmark(name.c_str(), panelStyleFrame, style)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("MenuBarLabelImage", labelImage)->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
