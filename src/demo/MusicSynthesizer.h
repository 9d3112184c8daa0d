#pragma once
// A music-like stereo test signal: a chord of sustained partials that changes every two
// seconds, a bass line, a kick and noise-burst percussion, with the voices panned differently
// left and right so that every band and both channel meters move. The same seed gives the same
// samples.
#include <array>
#include <cstdint>

#include "platform/sim/AudioSource.h"

namespace corvanel {

class MusicSynthesizer final : public AudioSource {
  public:
    explicit MusicSynthesizer(std::uint64_t seed = 1, double sampleRate = 48000);

    double sampleRate() const override { return sampleRate_; }
    std::uint32_t channels() const override { return 2; }
    void render(float* interleaved, std::size_t frames) override;

  private:
    struct Stereo {
        float left;
        float right;
    };
    Stereo nextFrame();
    float nextNoise();
    void startBar();

    static constexpr std::size_t partialCount = 6;

    double sampleRate_;
    std::uint64_t noiseState_;
    std::uint64_t frame_ = 0;
    // Per bar (two seconds): the chord's partial frequencies, pans and the bass notes.
    std::array<double, partialCount> partialHz_{};
    std::array<double, partialCount> partialPhase_{};
    std::array<float, partialCount> partialPan_{};
    std::array<double, 4> bassHz_{};
    std::array<double, 8> leadHz_{};  // an eighth-note melody, bright, for the upper middle
    double leadPhase_ = 0;
    double bassPhase_ = 0;
    double kickPhase_ = 0;
    float hatPan_ = 0.5f;
};

}  // namespace corvanel
