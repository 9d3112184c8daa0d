#include "demo/MusicSynthesizer.h"

#include <cmath>
#include <numbers>

namespace corvanel {

namespace {

constexpr double twoPi = 2.0 * std::numbers::pi;
constexpr double barSeconds = 2.0;
constexpr double beatSeconds = 0.5;

// splitmix64: small, fast and the same everywhere, so a seed fixes the whole signal.
std::uint64_t nextRandom(std::uint64_t& state) {
    std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

double unitRandom(std::uint64_t& state) {
    return static_cast<double>(nextRandom(state) >> 11) * (1.0 / 9007199254740992.0);
}

// Semitone steps of a minor pentatonic scale, for roots and bass notes.
constexpr std::array<int, 5> pentatonic = {0, 3, 5, 7, 10};
// The chord: root, fifth, octave, a tenth, and two bright overtones for the upper bands.
constexpr std::array<double, 6> chordRatios = {1.0, 1.5, 2.0, 2.5, 6.0, 17.0};
constexpr std::array<float, 6> chordGains = {0.10f, 0.07f, 0.06f, 0.05f, 0.025f, 0.012f};

double noteHz(double base, int semitones) {
    return base * std::pow(2.0, semitones / 12.0);
}

}  // namespace

MusicSynthesizer::MusicSynthesizer(std::uint64_t seed, double sampleRate)
    : sampleRate_(sampleRate), noiseState_(seed) {
    startBar();
}

void MusicSynthesizer::startBar() {
    const int root = pentatonic[nextRandom(noiseState_) % pentatonic.size()];
    const double rootHz = noteHz(220.0, root);
    for (std::size_t i = 0; i < partialCount; ++i) {
        partialHz_[i] = rootHz * chordRatios[i];
        partialPan_[i] = static_cast<float>(0.15 + 0.7 * unitRandom(noiseState_));
    }
    for (double& bass : bassHz_)
        bass = noteHz(41.2, pentatonic[nextRandom(noiseState_) % pentatonic.size()] + root % 2);
    for (double& lead : leadHz_) {
        const int step = pentatonic[nextRandom(noiseState_) % pentatonic.size()];
        const int octave = static_cast<int>(nextRandom(noiseState_) % 3);
        lead = noteHz(440.0, root + step + 12 * octave);
    }
    hatPan_ = static_cast<float>(0.55 + 0.35 * unitRandom(noiseState_));
}

float MusicSynthesizer::nextNoise() {
    return static_cast<float>(unitRandom(noiseState_) * 2.0 - 1.0);
}

MusicSynthesizer::Stereo MusicSynthesizer::nextFrame() {
    const double t = static_cast<double>(frame_) / sampleRate_;
    const auto framesPerBar = static_cast<std::uint64_t>(barSeconds * sampleRate_);
    if (frame_ > 0 && frame_ % framesPerBar == 0) startBar();
    ++frame_;

    float left = 0.0f;
    float right = 0.0f;
    for (std::size_t i = 0; i < partialCount; ++i) {
        partialPhase_[i] = std::fmod(partialPhase_[i] + twoPi * partialHz_[i] / sampleRate_, twoPi);
        const float tone = chordGains[i] * static_cast<float>(std::sin(partialPhase_[i]));
        left += tone * (1.0f - partialPan_[i]);
        right += tone * partialPan_[i];
    }

    const double inBeat = std::fmod(t, beatSeconds);
    const auto beat = static_cast<std::size_t>(std::fmod(t, barSeconds) / beatSeconds);

    // Bass: one note per beat, a plucked envelope, leaning left.
    bassPhase_ =
        std::fmod(bassPhase_ + twoPi * bassHz_[beat % bassHz_.size()] / sampleRate_, twoPi);
    const float bassEnvelope = static_cast<float>(std::exp(-inBeat * 3.0));
    const float bass = 0.22f * bassEnvelope *
                       static_cast<float>(std::sin(bassPhase_) + 0.3 * std::sin(2.0 * bassPhase_));
    left += bass * 0.65f;
    right += bass * 0.35f;

    // Lead: eighth notes with a few harmonics, alternating sides.
    const double inEighth = std::fmod(t, beatSeconds / 2);
    const auto eighth = static_cast<std::size_t>(std::fmod(t, barSeconds) / (beatSeconds / 2));
    leadPhase_ =
        std::fmod(leadPhase_ + twoPi * leadHz_[eighth % leadHz_.size()] / sampleRate_, twoPi);
    const float leadEnvelope = static_cast<float>(std::exp(-inEighth * 6.0));
    const float lead =
        leadEnvelope *
        static_cast<float>(0.06 * std::sin(leadPhase_) + 0.03 * std::sin(2.0 * leadPhase_) +
                           0.02 * std::sin(3.0 * leadPhase_) + 0.015 * std::sin(5.0 * leadPhase_));
    const float leadPan = eighth % 2 == 0 ? 0.3f : 0.7f;
    left += lead * (1.0f - leadPan);
    right += lead * leadPan;

    // Kick on every beat: a sine falling from 120 Hz towards 45 Hz, centred.
    const double kickHz = 45.0 + 75.0 * std::exp(-inBeat * 30.0);
    kickPhase_ = inBeat == 0.0 ? 0.0 : std::fmod(kickPhase_ + twoPi * kickHz / sampleRate_, twoPi);
    const float kick = 0.35f * static_cast<float>(std::exp(-inBeat * 9.0) * std::sin(kickPhase_));
    left += kick;
    right += kick;

    // Hats on the off-beats and a snare burst on beats 2 and 4: bright noise, leaning right.
    const double offBeat = std::fmod(t + beatSeconds / 2, beatSeconds);
    const float noise = nextNoise();
    const float hat = 0.08f * static_cast<float>(std::exp(-offBeat * 60.0)) * noise;
    const float snare =
        beat % 2 == 1 ? 0.12f * static_cast<float>(std::exp(-inBeat * 12.0)) * noise : 0.0f;
    left += hat * (1.0f - hatPan_) + snare * 0.5f;
    right += hat * hatPan_ + snare * 0.5f;

    // Slow, different swells per side so the two channel meters never move as one.
    left *= static_cast<float>(0.8 + 0.2 * std::sin(twoPi * 0.31 * t));
    right *= static_cast<float>(0.8 + 0.2 * std::cos(twoPi * 0.23 * t));
    return {left, right};
}

void MusicSynthesizer::render(float* interleaved, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        const Stereo frame = nextFrame();
        interleaved[2 * i] = frame.left;
        interleaved[2 * i + 1] = frame.right;
    }
}

}  // namespace corvanel
