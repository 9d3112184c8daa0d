#include "spectrum/SpectrumAnalyzer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "spectrum/LevelDynamics.h"

namespace corvanel {

namespace {

std::chrono::steady_clock::duration clockDuration(Seconds seconds) {
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(seconds);
}

// A level of exactly zero has no logarithm; this floor keeps silence at −180 dBFS.
constexpr float rmsFloor = 1e-9f;

}  // namespace

// One start: built on the background thread, read on the main thread once it has ended.
struct SpectrumAnalyzer::StartAttempt {
    std::unique_ptr<TapPipeline> pipeline;
    std::optional<SpectrumError> error;
};

std::shared_ptr<SpectrumAnalyzer> SpectrumAnalyzer::create(PlatformPorts ports) {
    auto analyzer = std::make_shared<SpectrumAnalyzer>(ConstructionKey{}, std::move(ports));
    analyzer->menuBarEnabled_ = readBool(*analyzer->ports_.settings, enabledKey, true);
    analyzer->ports_.taps->setFailureHandler(
        [weak = std::weak_ptr<SpectrumAnalyzer>(analyzer), executor = analyzer->ports_.executor](
            IOProcID proc, OSStatus status) {
            executor->post([weak, proc, status] {
                if (const auto target = weak.lock()) target->captureLost(proc, status);
            });
        });
    if (analyzer->menuBarEnabled_ && !analyzer->isCapturing()) analyzer->startSequence();
    return analyzer;
}

SpectrumAnalyzer::SpectrumAnalyzer(ConstructionKey, PlatformPorts ports)
    : ports_(std::move(ports)),
      ring_(std::make_shared<SampleRingBuffer>(
          [executor = ports_.executor] { return executor->monotonicNow(); })),
      captureWork_(ports_.executor) {
    peakTimes_.fill(MonoTime::min());
}

SpectrumAnalyzer::~SpectrumAnalyzer() {
    if (analysisTask_) analysisTask_->cancel();
    if (restartTask_) restartTask_->cancel();
    // The running capture goes here, at the end of the run, rather than on a thread that the
    // process's exit could overtake. No other capture job runs while one is running.
    pipeline_.reset();
}

const std::array<double, SpectrumAnalyzer::bandCount>& SpectrumAnalyzer::bandCenters() {
    return SpectrumScale::bandCenters();
}

// --- Demand -------------------------------------------------------------------------------

void SpectrumAnalyzer::setMenuBarEnabled(bool enabled) {
    const bool changed = enabled != menuBarEnabled_;
    menuBarEnabled_ = enabled;
    ports_.settings->write(enabledKey, enabled);
    if (changed) stateChanged.emit();
    reconcileCapture();
}

void SpectrumAnalyzer::setVisibleMeterWindows(std::int64_t count) {
    visibleMeterWindows_ = std::max<std::int64_t>(count, 0);
}

void SpectrumAnalyzer::meterWindowAppeared() {
    setVisibleMeterWindows(visibleMeterWindows_ + 1);
    reconcileCapture();
}

void SpectrumAnalyzer::meterWindowDisappeared() {
    setVisibleMeterWindows(visibleMeterWindows_ - 1);
    reconcileCapture();
}

void SpectrumAnalyzer::reconcileCapture() {
    if (!captureWanted()) {
        stop();
    } else if (!isCapturing()) {
        // A failed start is not retried by itself; the next reconcile tries again.
        startSequence();
    }
}

void SpectrumAnalyzer::deviceConfigurationChanged() {
    if (!captureWanted()) return;
    if (restartTask_) restartTask_->cancel();
    restartTask_ = spawn(ports_.executor, rebuildAfterDelay(weak_from_this()));
}

Task<> SpectrumAnalyzer::rebuildAfterDelay(std::weak_ptr<SpectrumAnalyzer> weak) {
    // A burst of device notifications leads to one rebuild, after the last of them; the old
    // pipeline keeps running until then.
    co_await sleepFor(rebuildDelay);
    if (co_await isCancelled()) co_return;
    const auto analyzer = weak.lock();
    if (!analyzer) co_return;
    analyzer->dropCapture();
    analyzer->startSequence();
}

// --- Start and stop -----------------------------------------------------------------------

void SpectrumAnalyzer::startSequence() {
    setStatusMessage(std::nullopt);
    // One start at a time. One that is no longer wanted when it ends starts afresh then.
    if (starting_) return;
    starting_ = true;
    auto attempt = std::make_shared<StartAttempt>();
    attempt->pipeline =
        std::make_unique<TapPipeline>(ports_.taps, ports_.audio, ring_, tapSampleRate_);
    captureWork_.run(
        [attempt] {
            attempt->error = attempt->pipeline->build();
            if (attempt->error) attempt->pipeline->teardown();
        },
        // The queue is not captured: a job that holds its own queue would keep it, and all it
        // holds, alive for good if it never ran.
        [weak = weak_from_this(), attempt, generation = startGeneration_] {
            if (const auto analyzer = weak.lock()) {
                analyzer->finishStart(*attempt, generation);
            } else {
                // The analyzer has gone, at the end of the run: what was built goes here, as the
                // running capture does in the analyzer's destructor.
                attempt->pipeline.reset();
            }
        });
}

void SpectrumAnalyzer::finishStart(StartAttempt& attempt, std::uint64_t generation) {
    starting_ = false;
    if (generation != startGeneration_) {
        // Stopped or rebuilt while it was being built: what it built goes.
        release(captureWork_, std::move(attempt.pipeline));
        if (captureWanted()) startSequence();
        return;
    }
    tapSampleRate_ = attempt.pipeline->tapSampleRate();
    if (attempt.error) {
        setStatusMessage(attempt.error->message);
        if (recoveryDelay_) scheduleRecovery();
    } else {
        pipeline_ = std::move(attempt.pipeline);
        recoveryDelay_.reset();
    }
    // A started analyzer always ticks, also after a failed build: outputs decay or hold.
    startAnalysisLoop();
}

void SpectrumAnalyzer::dropCapture() {
    ++startGeneration_;
    release(captureWork_, std::move(pipeline_));
}

void SpectrumAnalyzer::release(BackgroundQueue& captureWork,
                               std::unique_ptr<TapPipeline> pipeline) {
    if (!pipeline) return;
    captureWork.run(
        [removed = std::shared_ptr<TapPipeline>(std::move(pipeline))] { removed->teardown(); });
}

void SpectrumAnalyzer::stop() {
    if (restartTask_) restartTask_->cancel();
    restartTask_.reset();
    recoveryDelay_.reset();
    if (analysisTask_) analysisTask_->cancel();
    analysisTask_.reset();
    dropCapture();
    levels_.assign(bandCount, 0.0f);
    peaks_.assign(bandCount, 0.0f);
    leftLevel_ = 0;
    rightLevel_ = 0;
    setStatusMessage(std::nullopt);
    valuesChanged.emit();
}

// --- Capture lost after its start ---------------------------------------------------------

void SpectrumAnalyzer::captureLost(IOProcID proc, OSStatus status) {
    // A report about a capture that has been stopped or rebuilt since changes nothing.
    if (!pipeline_ || pipeline_->ioProcID() != proc) return;
    const char* const step = "keep audio capture running";
    const std::optional<SpectrumError> error = pipeline_->check(status, step);
    release(captureWork_, std::move(pipeline_));
    setStatusMessage(error ? error->message : "Could not " + std::string(step) + ".");
    recoveryDelay_ = firstRecoveryDelay;
    scheduleRecovery();
}

void SpectrumAnalyzer::scheduleRecovery() {
    const Seconds delay = *recoveryDelay_;
    recoveryDelay_ = std::min(delay * 2, longestRecoveryDelay);
    if (restartTask_) restartTask_->cancel();
    restartTask_ = spawn(ports_.executor, recoverAfterDelay(weak_from_this(), delay));
}

Task<> SpectrumAnalyzer::recoverAfterDelay(std::weak_ptr<SpectrumAnalyzer> weak, Seconds delay) {
    co_await sleepFor(delay);
    if (co_await isCancelled()) co_return;
    const auto analyzer = weak.lock();
    if (!analyzer || analyzer->isCapturing()) co_return;
    // A failed attempt schedules the next one, a little later.
    analyzer->startSequence();
}

void SpectrumAnalyzer::setStatusMessage(std::optional<std::string> message) {
    if (message == statusMessage_) return;
    statusMessage_ = std::move(message);
    stateChanged.emit();
}

// --- Analysis -----------------------------------------------------------------------------

void SpectrumAnalyzer::startAnalysisLoop() {
    if (analysisTask_) analysisTask_->cancel();
    analysisTask_ = spawn(ports_.executor, analysisLoop(weak_from_this()));
}

Task<> SpectrumAnalyzer::analysisLoop(std::weak_ptr<SpectrumAnalyzer> weak) {
    while (!co_await isCancelled()) {
        co_await sleepFor(tickInterval);
        // Cancellation comes from stop() or a restart of the loop: a tick after it would
        // overwrite the zeroed outputs of a stopped analyzer, so the wake-up ends the task.
        if (co_await isCancelled()) co_return;
        const auto analyzer = weak.lock();
        if (!analyzer) co_return;
        analyzer->updateLevels();
    }
}

void SpectrumAnalyzer::updateLevels() {
    updateChannelLevels();
    if (!spectrum_.isReady() || !ring_->copyLatest(spectrum_.input())) {
        std::vector<float> fallen = levels_;
        std::transform(fallen.begin(), fallen.end(), fallen.begin(),
                       LevelDynamics::fallWithoutData);
        levels_ = std::move(fallen);
    } else {
        const BandSpectrum::Targets targets = spectrum_.computeTargets(tapSampleRate_);
        std::vector<float> smoothed(bandCount);
        for (std::size_t band = 0; band < bandCount; ++band)
            smoothed[band] = LevelDynamics::smoothBand(levels_[band], targets[band]);
        levels_ = std::move(smoothed);
    }
    updatePeaks();
    valuesChanged.emit();
}

void SpectrumAnalyzer::updatePeaks() {
    const MonoTime now = ports_.executor->monotonicNow();
    std::vector<float> updated = peaks_;
    for (std::size_t band = 0; band < bandCount; ++band) {
        if (levels_[band] >= updated[band]) {
            // Also when equal, so a peak resting on the level keeps being renewed.
            updated[band] = levels_[band];
            peakTimes_[band] = now;
        } else if (now - clockDuration(peakHold) > peakTimes_[band]) {
            updated[band] = std::max(updated[band] - 0.03f, levels_[band]);
        }
    }
    peaks_ = std::move(updated);
}

void SpectrumAnalyzer::updateChannelLevels() {
    const MonoTime now = ports_.executor->monotonicNow();
    const SampleRingBuffer::LevelSnapshot snapshot = ring_->levelSnapshot();
    // Compared this way round so the "never written" time cannot overflow a subtraction.
    const bool stale = snapshot.lastWrite <= now - clockDuration(channelStaleAfter);
    const float rmsLeft = stale ? rmsFloor : snapshot.channelRMS.left + rmsFloor;
    const float rmsRight = stale ? rmsFloor : snapshot.channelRMS.right + rmsFloor;
    leftLevel_ = LevelDynamics::meterBallistics(
        leftLevel_, LevelDynamics::vuFraction(20.0f * std::log10(rmsLeft)));
    rightLevel_ = LevelDynamics::meterBallistics(
        rightLevel_, LevelDynamics::vuFraction(20.0f * std::log10(rmsRight)));
}

}  // namespace corvanel
