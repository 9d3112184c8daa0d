#include "spectrum/BandSpectrum.h"

#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
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

// A band's summed power: the sum of squares of the real and imaginary parts of its bins,
// which lie side by side in the transform's output. Eight running sums side by side keep the
// additions from waiting on each other.
float sumOfSquares(const float* values, std::int64_t count) {
    std::array<float, 8> partial{};
    std::int64_t i = 0;
    for (; i + 8 <= count; i += 8) {
        for (std::size_t lane = 0; lane < partial.size(); ++lane)
            partial[lane] += values[i + static_cast<std::int64_t>(lane)] *
                             values[i + static_cast<std::int64_t>(lane)];
    }
    for (; i < count; ++i)
        partial[0] += values[i] * values[i];
    return ((partial[0] + partial[1]) + (partial[2] + partial[3])) +
           ((partial[4] + partial[5]) + (partial[6] + partial[7]));
}

}  // namespace

struct BandSpectrum::Plan {
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
    const float level = (db + 60.0f) / 60.0f;
    // Written so that a power that is not a number (an overflow in the transform) reads as 0.
    if (!(level > 0.0f)) return 0.0f;
    return std::min(level, 1.0f);
}

BandSpectrum::Targets BandSpectrum::computeTargets(double sampleRate) {
    Targets targets{};
    if (!plan_) return targets;
    float* samples = plan_->samples.get();
    const auto& hann = window();
    // A sample that is not a finite number (a broken driver or file) would spread over every bin
    // of the transform; it counts as silence instead. Such a sample has all exponent bits set;
    // masking on them, with no branch, keeps the loop vectorised like the plain product.
    constexpr std::uint32_t exponent = 0x7f800000u;
    for (std::int64_t n = 0; n < fftSize; ++n) {
        std::uint32_t bits = 0;
        std::memcpy(&bits, &samples[n], sizeof bits);
        const float windowed = samples[n] * hann[static_cast<std::size_t>(n)];
        std::uint32_t windowedBits = 0;
        std::memcpy(&windowedBits, &windowed, sizeof windowedBits);
        windowedBits &= 0u - static_cast<std::uint32_t>((bits & exponent) != exponent);
        std::memcpy(&samples[n], &windowedBits, sizeof windowedBits);
    }
    fftwf_execute(plan_->forward.get());

    if (sampleRate != rangesRate_) {
        for (std::size_t band = 0; band < ranges_.size(); ++band)
            ranges_[band] = SpectrumScale::binRange(band, sampleRate, fftSize);
        rangesRate_ = sampleRate;
    }
    // Scaling by 2/N, a power of two, is exact in floating point, so it can be applied once to
    // each band's sum instead of to every bin.
    const auto* parts = reinterpret_cast<const float*>(plan_->bins.get());
    for (std::size_t band = 0; band < targets.size(); ++band) {
        const BinRange& range = ranges_[band];
        if (range.empty()) continue;
        const float power = sumOfSquares(parts + 2 * range.lo, 2 * (range.hi - range.lo + 1)) *
                            amplitudeScale * amplitudeScale;
        targets[band] = levelOfPower(power);
    }
    return targets;
}

}  // namespace corvanel
