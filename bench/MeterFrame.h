#pragma once
// The frame loop the panel runs, for the meter benchmarks: new analyzer values, a 60 Hz spring
// step and a paint through the same FramePainter as the panel. The painting thread is blocked
// while the frame is painted on a pool thread, so the benchmarks report wall time.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QSize>
#include <algorithm>
#include <cmath>
#include <functional>

#include "meters/kit/FramePainter.h"
#include "meters/kit/MeterRenderer.h"
#include "meters/kit/MeterValues.h"

namespace corvanel::bench {

// Two alternating sets of music-like values, so every frame draws a change.
inline meters::MeterValues valuesForFrame(int frame, double loudness) {
    meters::MeterValues values;
    for (int i = 0; i < 40; ++i) {
        const double level = loudness * (0.6 + 0.4 * std::sin(i * 0.37 + frame * 0.9));
        values.levels.push_back(static_cast<float>(level));
        values.peaks.push_back(static_cast<float>(std::min(1.0, level + 0.12)));
    }
    values.left = static_cast<float>(0.6 + 0.2 * std::sin(frame * 1.3));
    values.right = static_cast<float>(0.55 + 0.2 * std::cos(frame * 1.1));
    return values;
}

inline void runMeterFrames(benchmark::State& state, meters::MeterRenderer& renderer,
                           const QSize& size, double loudness) {
    const meters::MeterValues frames[] = {valuesForFrame(0, loudness), valuesForFrame(1, loudness)};
    meters::FramePainter painter;
    int frame = 0;
    for (auto _ : state) {
        renderer.setValues(frames[frame++ % 2]);
        renderer.step(1.0 / 60);
        const QImage& image =
            painter.paint(size, 1.0, [&](QPainter& p) { renderer.paint(p, QSizeF(size)); });
        benchmark::DoNotOptimize(image.constBits());
    }
}

// Runs the benchmarks `registerAll` registers inside a Qt application (offscreen unless told
// otherwise); the body of a meter benchmark program's main.
inline int runWithQt(int argc, char** argv, const std::function<void()>& registerAll) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtArgc = 1;
    QGuiApplication application(qtArgc, argv);
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace corvanel::bench
