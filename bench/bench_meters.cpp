// One frame of each panel style at the panel's size for its height group, and one menu-bar label
// image. Each frame gets new analyzer values and a 60 Hz spring step, as in the running panel.
#include <benchmark/benchmark.h>

#include <QImage>
#include <memory>
#include <vector>

#include "MeterFrame.h"
#include "app/MeterRendererFactory.h"
#include "app/PanelMeterStyle.h"
#include "meters/styles/SpectrumBarsView.h"

namespace {

using corvanel::PanelHeightGroup;
using corvanel::PanelMeterStyle;

void panelStyleFrame(benchmark::State& state, PanelMeterStyle style) {
    const QSize size =
        style.heightGroup() == PanelHeightGroup::tall ? QSize(500, 560) : QSize(500, 300);
    const std::unique_ptr<corvanel::meters::MeterRenderer> renderer =
        corvanel::makeMeterRenderer(style);
    corvanel::bench::runMeterFrames(state, *renderer, size, 0.75);
}

void labelImage(benchmark::State& state) {
    const std::vector<float> frames[] = {corvanel::bench::valuesForFrame(0, 0.75).levels,
                                         corvanel::bench::valuesForFrame(1, 0.75).levels};
    int frame = 0;
    for (auto _ : state) {
        const QImage image = corvanel::meters::SpectrumBarsView::menuBarImage(
            QStringLiteral("44.1 kHz"), frames[frame++ % 2]);
        benchmark::DoNotOptimize(image.constBits());
    }
}

}  // namespace

int main(int argc, char** argv) {
    return corvanel::bench::runWithQt(argc, argv, [] {
        for (const PanelMeterStyle style : PanelMeterStyle::allCases()) {
            const std::string name = "PanelStyleFrame/" + std::string(style.rawValue());
            benchmark::RegisterBenchmark(name.c_str(), panelStyleFrame, style)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
        }
        benchmark::RegisterBenchmark("MenuBarLabelImage", labelImage)
            ->Unit(benchmark::kMicrosecond);
    });
}
