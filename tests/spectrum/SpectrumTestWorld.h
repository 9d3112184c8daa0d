#pragma once
// A simulated machine for the analyzer: virtual time, one default output device, an in-memory
// settings store and a tap host that delivers blocks only when a test asks.
#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

#include "platform/PlatformPorts.h"
#include "platform/sim/AudioSource.h"
#include "platform/sim/SimAudioHardware.h"
#include "platform/sim/SimProcessTapHost.h"
#include "platform/sim/SimSettingsStore.h"
#include "platform/sim/VirtualTimeExecutor.h"
#include "spectrum/SpectrumAnalyzer.h"

namespace corvanel::testing {

// Stereo sines whose frequency and amplitude per side a test can change between blocks;
// amplitude 0 is digital silence. Phase runs on continuously.
class ToneSource final : public AudioSource {
  public:
    explicit ToneSource(double rate = 48000) : rate_(rate) {}

    double frequency = 1031.25;  // bin 88 of a 4096-point transform at 48 kHz
    float leftAmplitude = 0.0f;
    float rightAmplitude = 0.0f;

    // The player now plays at another rate (the device was switched): the tone keeps its pitch.
    void setSampleRate(double rate) { rate_ = rate; }
    double sampleRate() const override { return rate_; }
    std::uint32_t channels() const override { return 2; }
    void render(float* interleaved, std::size_t frames) override {
        for (std::size_t i = 0; i < frames; ++i, ++frame_) {
            const double phase =
                2.0 * std::numbers::pi * frequency * static_cast<double>(frame_) / rate_;
            const auto value = static_cast<float>(std::sin(phase));
            interleaved[2 * i] = leftAmplitude * value;
            interleaved[2 * i + 1] = rightAmplitude * value;
        }
    }

  private:
    double rate_;
    std::uint64_t frame_ = 0;
};

struct SpectrumTestWorld {
    std::shared_ptr<VirtualTimeExecutor> executor = std::make_shared<VirtualTimeExecutor>();
    std::shared_ptr<SimAudioHardware> audio = std::make_shared<SimAudioHardware>(executor);
    std::shared_ptr<SimSettingsStore> settings = std::make_shared<SimSettingsStore>();
    std::shared_ptr<ToneSource> tone = std::make_shared<ToneSource>();
    std::shared_ptr<SimProcessTapHost> taps =
        std::make_shared<SimProcessTapHost>(tone, SimProcessTapHost::Pacing::manual);
    AudioObjectID speakers = 0;

    SpectrumTestWorld() {
        speakers = addOutputDevice("Speakers", "Speakers-UID");
        audio->setDefaultOutputDevice(speakers);
        executor->runUntilIdle();
    }

    AudioObjectID addOutputDevice(const std::string& name, const std::string& uid) const {
        SimAudioHardware::DeviceSpec device;
        device.name = name;
        device.uid = uid;
        return audio->addDevice(device);
    }

    PlatformPorts ports() const {
        PlatformPorts result;
        result.executor = executor;
        result.audio = audio;
        result.taps = taps;
        result.settings = settings;
        return result;
    }

    std::shared_ptr<SpectrumAnalyzer> makeAnalyzer() const {
        auto analyzer = SpectrumAnalyzer::create(ports());
        settle();
        return analyzer;
    }

    // A full analysis block (4096 frames) of the tone, in the tap's 512-frame blocks.
    void deliverAnalysisBlock() const {
        for (int i = 0; i < 8; ++i)
            taps->deliverBlock();
    }

    // Lets what is due now run: capture is built and removed in the background, and a start
    // ends on the main thread.
    void settle() const { executor->runUntilIdle(); }

    // Runs exactly one analysis tick (ticks fall every 33 ms of virtual time).
    void tick() const { executor->advanceBy(SpectrumAnalyzer::tickInterval); }

    bool tapRunning() const { return taps->isDelivering(); }
};

}  // namespace corvanel::testing
