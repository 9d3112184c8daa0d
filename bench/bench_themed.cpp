// One frame of each themed panel style at the tall panel size (500 x 560), and one frame of the
// candle-light visualizer at its window size (960 x 600). Each frame gets new analyzer values
// (and, for the visualizer, a new time), as in the running application.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "app/MeterRendererFactory.h"
#include "meters/CandleRoom.h"
#include "meters/CandlelightScene.h"
#include "meters/MeterValues.h"

namespace {

using corvanel::meters::MeterValues;

// Two alternating sets of music-like values, so every frame draws a change.
MeterValues valuesForFrame(int frame, double loudness) {
    MeterValues values;
    for (int i = 0; i < 40; ++i) {
        const double level = loudness * (0.6 + 0.4 * std::sin(i * 0.37 + frame * 0.9));
        values.levels.push_back(static_cast<float>(level));
        values.peaks.push_back(static_cast<float>(std::min(1.0, level + 0.12)));
    }
    values.left = static_cast<float>(0.6 + 0.2 * std::sin(frame * 1.3));
    values.right = static_cast<float>(0.55 + 0.2 * std::cos(frame * 1.1));
    return values;
}

void themedStyleFrame(benchmark::State& state, const std::string& rawValue) {
    const QSize size(500, 560);
    QImage target(size, QImage::Format_ARGB32_Premultiplied);
    const auto renderer = corvanel::makeMeterRenderer(rawValue);
    const MeterValues frames[] = {valuesForFrame(0, 0.8), valuesForFrame(1, 0.8)};
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

void visualizerFrame(benchmark::State& state, double loudness) {
    QImage target(960, 600, QImage::Format_ARGB32_Premultiplied);
    const QImage& room = corvanel::meters::candleRoom();
    corvanel::meters::CandlelightLayers layers;
    const std::vector<float> frames[] = {valuesForFrame(0, loudness).levels,
                                         valuesForFrame(1, loudness).levels};
    double time = 785'000'000.0;
    int frame = 0;
    for (auto _ : state) {
        time += 1.0 / 30;
        target.fill(Qt::black);
        QPainter painter(&target);
        corvanel::meters::CandlelightScene(frames[frame++ % 2], time)
            .paint(painter, QSizeF(960, 600), room, layers);
        painter.end();
        benchmark::DoNotOptimize(target.constBits());
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtArgc = 1;
    QGuiApplication application(qtArgc, argv);
    for (const char* style :
         {"inferno", "valhalla", "futuristicrack", "vintageconsole", "pulsar"}) {
        benchmark::RegisterBenchmark(("ThemedStyleFrame/" + std::string(style)).c_str(),
                                     themedStyleFrame, std::string(style))
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("VisualizerFrame/quiet", visualizerFrame, 0.2)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("VisualizerFrame/loud", visualizerFrame, 0.7)
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
