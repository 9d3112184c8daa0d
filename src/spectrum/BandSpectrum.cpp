#include "spectrum/BandSpectrum.h"

#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <numbers>

namespace corvanel {

namespace {

// FFTW's planner is not thread-safe; analyzers may be created on more than one thread in tests
// and tools.
std::mutex& plannerLock() {
    static std::mutex lock;
    return lock;
}

struct FftwFree {
    void operator()(void* memory) const { fftwf_free(memory); }
};
struct PlanDestroy {
    void operator()(fftwf_plan plan) const {
        std::lock_guard guard(plannerLock());
        fftwf_destroy_plan(plan);
    }
};

// The Hann window's mean square; dividing by it undoes the window's loss of power.
constexpr float windowPower = 0.375f;
// Scales a bin of the unnormalised transform to the amplitude of a sinusoid.
constexpr float amplitudeScale = 2.0f / static_cast<float>(BandSpectrum::fftSize);

// A band's summed power. Four running sums side by side: long bands would otherwise wait on
// one chain of additions.
float sumOf(const float* power, const BinRange& range) {
    std::array<float, 4> partial{};
    std::int64_t k = range.lo;
    for (; k + 3 <= range.hi; k += 4) {
        partial[0] += power[k];
        partial[1] += power[k + 1];
        partial[2] += power[k + 2];
        partial[3] += power[k + 3];
    }
    for (; k <= range.hi; ++k)
        partial[0] += power[k];
    return (partial[0] + partial[1]) + (partial[2] + partial[3]);
}

}  // namespace

struct BandSpectrum::Plan {
    std::array<float, fftSize / 2> binPower{};
    std::unique_ptr<float, FftwFree> samples;
    std::unique_ptr<fftwf_complex, FftwFree> bins;
    std::unique_ptr<fftwf_plan_s, PlanDestroy> forward;
};

BandSpectrum::BandSpectrum() {
    auto plan = std::make_unique<Plan>();
    plan->samples.reset(fftwf_alloc_real(fftSize));
    plan->bins.reset(fftwf_alloc_complex(fftSize / 2 + 1));
    if (!plan->samples || !plan->bins) return;
    std::fill_n(plan->samples.get(), fftSize, 0.0f);
    {
        std::lock_guard guard(plannerLock());
        // A real-input transform yields the same bins 0 ... N/2 as the complex transform of the
        // same block with a zero imaginary part.
        plan->forward.reset(fftwf_plan_dft_r2c_1d(static_cast<int>(fftSize), plan->samples.get(),
                                                  plan->bins.get(), FFTW_ESTIMATE));
    }
    if (plan->forward) plan_ = std::move(plan);
}

BandSpectrum::~BandSpectrum() = default;

bool BandSpectrum::isReady() const {
    return plan_ != nullptr;
}

std::span<float> BandSpectrum::input() {
    if (!plan_) return {};
    return {plan_->samples.get(), static_cast<std::size_t>(fftSize)};
}

const std::array<float, BandSpectrum::fftSize>& BandSpectrum::window() {
    static const std::array<float, fftSize> hann = [] {
        std::array<float, fftSize> table{};
        for (std::int64_t n = 0; n < fftSize; ++n) {
            const double phase =
                2.0 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(fftSize);
            table[static_cast<std::size_t>(n)] = static_cast<float>(0.5 * (1.0 - std::cos(phase)));
        }
        return table;
    }();
    return hann;
}

float BandSpectrum::levelOfPower(float power) {
    const float db = 10.0f * std::log10(power / windowPower + 1e-12f);
    return std::clamp((db + 60.0f) / 60.0f, 0.0f, 1.0f);
}

BandSpectrum::Targets BandSpectrum::computeTargets(double sampleRate) {
    Targets targets{};
    if (!plan_) return targets;
    float* samples = plan_->samples.get();
    const auto& hann = window();
    for (std::int64_t n = 0; n < fftSize; ++n)
        samples[n] *= hann[static_cast<std::size_t>(n)];
    fftwf_execute(plan_->forward.get());

    if (sampleRate != rangesRate_) {
        for (std::size_t band = 0; band < ranges_.size(); ++band)
            ranges_[band] = SpectrumScale::binRange(band, sampleRate, fftSize);
        rangesRate_ = sampleRate;
    }
    // Each bin's power first, in one pass the compiler vectorises; the bands then add up
    // spans of it (neighbours share their border bin).
    const fftwf_complex* bins = plan_->bins.get();
    float* power = plan_->binPower.data();
    for (std::int64_t k = 0; k < fftSize / 2; ++k) {
        const float re = bins[k][0] * amplitudeScale;
        const float im = bins[k][1] * amplitudeScale;
        power[k] = re * re + im * im;
    }
    for (std::size_t band = 0; band < targets.size(); ++band) {
        const BinRange& range = ranges_[band];
        if (!range.empty()) targets[band] = levelOfPower(sumOf(power, range));
    }
    return targets;
}

}  // namespace corvanel
