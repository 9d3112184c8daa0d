// One analysis tick as the program runs it (channel levels, copy from the ring, window,
// 4096-point transform, 40 band sums, smoothing and peaks), next to the bare FFTW execute of
// the same transform in the same run. Budget: the tick within twice the bare transform.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cmath>
#include <memory>
#include <vector>

#include "demo/MusicSynthesizer.h"
#include "platform/sim/SimAudioHardware.h"
#include "platform/sim/SimProcessTapHost.h"
#include "platform/sim/SimSettingsStore.h"
#include "platform/sim/VirtualTimeExecutor.h"
#include "spectrum/BandSpectrum.h"
#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel {
namespace {

void bareTransform(benchmark::State& state) {
    const int size = static_cast<int>(BandSpectrum::fftSize);
    std::unique_ptr<float, decltype(&fftwf_free)> input(fftwf_alloc_real(size), fftwf_free);
    std::unique_ptr<fftwf_complex, decltype(&fftwf_free)> output(fftwf_alloc_complex(size / 2 + 1),
                                                                 fftwf_free);
    std::unique_ptr<fftwf_plan_s, decltype(&fftwf_destroy_plan)> plan(
        fftwf_plan_dft_r2c_1d(size, input.get(), output.get(), FFTW_ESTIMATE), fftwf_destroy_plan);
    for (int n = 0; n < size; ++n)
        input.get()[n] = static_cast<float>(std::sin(0.05 * n));
    for (auto _ : state) {
        fftwf_execute(plan.get());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(bareTransform);

void analysisTick(benchmark::State& state) {
    auto executor = std::make_shared<VirtualTimeExecutor>();
    auto audio = std::make_shared<SimAudioHardware>(executor);
    SimAudioHardware::DeviceSpec output;
    output.name = "Output";
    output.uid = "Output-UID";
    audio->setDefaultOutputDevice(audio->addDevice(output));
    auto taps = std::make_shared<SimProcessTapHost>(std::make_shared<MusicSynthesizer>(1),
                                                    SimProcessTapHost::Pacing::manual);
    PlatformPorts ports;
    ports.executor = executor;
    ports.audio = audio;
    ports.taps = taps;
    ports.settings = std::make_shared<SimSettingsStore>();
    const auto analyzer = SpectrumAnalyzer::create(ports);
    executor->runUntilIdle();
    for (int i = 0; i < 16; ++i)
        taps->deliverBlock();

    // Nothing new arrives while timing: the tick's work is the same for fresh or held data.
    for (auto _ : state)
        executor->advanceBy(SpectrumAnalyzer::tickInterval);  // exactly one tick
    benchmark::DoNotOptimize(analyzer->levels().data());
}
BENCHMARK(analysisTick);

}  // namespace
}  // namespace corvanel

BENCHMARK_MAIN();
