// One frame of each themed panel style at the tall panel size (500 x 560), and one frame of the
// candle-light visualizer at its window size (960 x 600). Each frame gets new analyzer values
// (and, for the visualizer, a new time), as in the running application.
#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <memory>
#include <string>
#include <vector>

#include "MeterFrame.h"
#include "app/MeterRendererFactory.h"
#include "meters/candlelight/CandleRoom.h"
#include "meters/candlelight/CandlelightScene.h"
#include "meters/kit/FramePainter.h"

namespace {

void themedStyleFrame(benchmark::State& state, const std::string& rawValue) {
    const auto renderer = corvanel::makeMeterRenderer(rawValue);
    corvanel::bench::runMeterFrames(state, *renderer, QSize(500, 560), 0.8);
}

void visualizerFrame(benchmark::State& state, double loudness) {
    const QSize size(960, 600);
    const QImage& room = corvanel::meters::candleRoom();
    corvanel::meters::CandlelightLayers layers;
    corvanel::meters::FramePainter painter;
    const std::vector<float> frames[] = {corvanel::bench::valuesForFrame(0, loudness).levels,
                                         corvanel::bench::valuesForFrame(1, loudness).levels};
    double time = 785'000'000.0;
    int frame = 0;
    for (auto _ : state) {
        time += 1.0 / 30;
        const corvanel::meters::CandlelightScene scene(frames[frame++ % 2], time);
        const QImage& image = painter.paint(size, 1.0, [&](QPainter& p) {
            p.fillRect(QRect(QPoint(), size), Qt::black);
            scene.paint(p, QSizeF(size), room, layers);
        });
        benchmark::DoNotOptimize(image.constBits());
    }
}

}  // namespace

int main(int argc, char** argv) {
    return corvanel::bench::runWithQt(argc, argv, [] {
        for (const char* style :
             {"inferno", "valhalla", "futuristicrack", "vintageconsole", "pulsar"}) {
            benchmark::RegisterBenchmark(("ThemedStyleFrame/" + std::string(style)).c_str(),
                                         themedStyleFrame, std::string(style))
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
        }
        benchmark::RegisterBenchmark("VisualizerFrame/quiet", visualizerFrame, 0.2)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
        benchmark::RegisterBenchmark("VisualizerFrame/loud", visualizerFrame, 0.7)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    });
}
