#pragma once
// Plays an audio source through the real analyzer, off-line: the simulated tap hands it
// 512-frame blocks as a capture would, at the source's rate, and the analysis ticks every 33 ms
// of virtual time. Tools use it to print the meters' values for a file, or to render the
// meters as they would look at a given moment of it.
#include <memory>
#include <vector>

#include "platform/sim/AudioSource.h"
#include "platform/sim/SimProcessTapHost.h"
#include "platform/sim/VirtualTimeExecutor.h"
#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel {

// The published values after one tick.
struct SpectrumSnapshot {
    double time = 0;  // seconds of audio played when the tick ran
    std::vector<float> levels;
    std::vector<float> peaks;
    float leftLevel = 0;
    float rightLevel = 0;
};

class OfflineSpectrum {
  public:
    static constexpr std::uint32_t blockFrames = 512;

    explicit OfflineSpectrum(std::shared_ptr<AudioSource> source);
    ~OfflineSpectrum();
    OfflineSpectrum(const OfflineSpectrum&) = delete;
    OfflineSpectrum& operator=(const OfflineSpectrum&) = delete;

    // Plays on to the next tick and returns the values it published.
    SpectrumSnapshot nextTick();
    // Plays on through every tick up to `seconds` and returns the last one's values (the
    // values at rest when no tick has run by then).
    SpectrumSnapshot valuesAt(double seconds);

    const SpectrumAnalyzer& analyzer() const { return *analyzer_; }

  private:
    SpectrumSnapshot snapshot() const;

    std::shared_ptr<AudioSource> source_;
    std::shared_ptr<VirtualTimeExecutor> executor_;
    std::shared_ptr<SimProcessTapHost> taps_;
    std::shared_ptr<SpectrumAnalyzer> analyzer_;
    std::int64_t ticks_ = 0;
    std::int64_t blocksDelivered_ = 0;
};

}  // namespace corvanel
