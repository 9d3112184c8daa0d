#include "corvanel-tool/OfflineSpectrum.h"

#include <cmath>
#include <utility>

#include "platform/sim/SimAudioHardware.h"
#include "platform/sim/SimSettingsStore.h"

namespace corvanel {

namespace {

// Whole nanoseconds throughout, so a tick is never missed by a rounding error: ticks fall on
// exact multiples of the analysis interval.
const std::chrono::nanoseconds tickPeriod =
    std::chrono::duration_cast<std::chrono::nanoseconds>(SpectrumAnalyzer::tickInterval);

std::chrono::nanoseconds blockEnd(std::int64_t block, double sampleRate) {
    const double frames = static_cast<double>(block) * OfflineSpectrum::blockFrames;
    return std::chrono::nanoseconds(std::llround(frames * 1e9 / sampleRate));
}

double secondsOf(std::chrono::nanoseconds time) {
    return std::chrono::duration_cast<Seconds>(time).count();
}

}  // namespace

OfflineSpectrum::OfflineSpectrum(std::shared_ptr<AudioSource> source)
    : source_(std::move(source)),
      executor_(std::make_shared<VirtualTimeExecutor>()),
      taps_(std::make_shared<SimProcessTapHost>(source_, SimProcessTapHost::Pacing::manual)) {
    taps_->setFormat(SimProcessTapHost::floatFormat(source_->sampleRate(), source_->channels()));
    taps_->setBlockFrames(blockFrames);

    auto audio = std::make_shared<SimAudioHardware>(executor_);
    SimAudioHardware::DeviceSpec output;
    output.name = "Offline Output";
    output.uid = "Corvanel-Offline-Output";
    output.nominalRate = source_->sampleRate();
    audio->setDefaultOutputDevice(audio->addDevice(output));

    PlatformPorts ports;
    ports.executor = executor_;
    ports.audio = std::move(audio);
    ports.taps = taps_;
    ports.settings = std::make_shared<SimSettingsStore>();  // the menu image on: capture runs
    analyzer_ = SpectrumAnalyzer::create(std::move(ports));
    executor_->runUntilIdle();
}

OfflineSpectrum::~OfflineSpectrum() = default;

SpectrumSnapshot OfflineSpectrum::nextTick() {
    ++ticks_;
    const std::chrono::nanoseconds tickTime = ticks_ * tickPeriod;
    const MonoTime start{};
    // Every block completed by the tick arrives first, each at the moment it is complete.
    while (blockEnd(blocksDelivered_ + 1, source_->sampleRate()) <= tickTime) {
        ++blocksDelivered_;
        // A tick due at the very moment the block completes runs after it has arrived.
        executor_->advanceUpTo(start + blockEnd(blocksDelivered_, source_->sampleRate()));
        taps_->deliverBlock();
    }
    executor_->advanceTo(start + tickTime);
    return snapshot();
}

SpectrumSnapshot OfflineSpectrum::valuesAt(double seconds) {
    SpectrumSnapshot last = snapshot();
    while (secondsOf((ticks_ + 1) * tickPeriod) <= seconds + 1e-9)
        last = nextTick();
    return last;
}

SpectrumSnapshot OfflineSpectrum::snapshot() const {
    return {secondsOf(ticks_ * tickPeriod), analyzer_->levels(), analyzer_->peaks(),
            analyzer_->leftLevel(), analyzer_->rightLevel()};
}

}  // namespace corvanel
