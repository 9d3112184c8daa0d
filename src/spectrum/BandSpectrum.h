#pragma once
// The spectrum step of one analysis tick: window the newest 4096 samples, one forward FFT,
// and the level of each of the 40 bands on a 0...1 scale (−60 dB ... 0 dB). The transform is
// planned once, at construction; a tick only executes it and allocates nothing.
#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "spectrum/SpectrumScale.h"

namespace corvanel {

class BandSpectrum {
  public:
    static constexpr std::int64_t fftSize = 4096;
    using Targets = std::array<float, SpectrumScale::bandCount>;

    BandSpectrum();
    ~BandSpectrum();
    BandSpectrum(const BandSpectrum&) = delete;
    BandSpectrum& operator=(const BandSpectrum&) = delete;

    // False when the transform could not be prepared; every tick then takes the no-data path.
    bool isReady() const;
    // Where the caller copies the 4096 newest samples, oldest first, before `computeTargets`.
    std::span<float> input();
    // Windows the input in place, transforms it and returns each band's target level.
    Targets computeTargets(double sampleRate);

    // The periodic Hann window, w[n] = 0.5 (1 − cos(2πn/N)); its mean square is 3/8.
    static const std::array<float, fftSize>& window();
    // A band's summed power (amplitude-scaled) as a 0...1 level: −60 dB is 0, 0 dB is 1.
    static float levelOfPower(float power);

  private:
    struct Plan;
    std::unique_ptr<Plan> plan_;
    // The bands' bin spans for the rate they were worked out for; the rate rarely changes.
    std::array<BinRange, SpectrumScale::bandCount> ranges_{};
    double rangesRate_ = 0;
};

}  // namespace corvanel
