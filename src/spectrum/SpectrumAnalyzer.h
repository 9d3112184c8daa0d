#pragma once
// The application's one source of live audio values. It captures what the computer plays
// (through the ProcessTapHost port) and, about 30 times a second on the main thread, turns the
// captured samples into 40 band levels on a logarithmic axis, a peak-hold per band, and a left
// and right level on a VU scale. It runs capture only while something shows live audio: the
// menu-bar image when the user wants it, or at least one open meter window.
//
// Capture is built and removed on a background thread, one job after another, so that a sound
// server that does not answer never holds up the main thread: a start ends on the main thread,
// which takes the built capture on only if it is still wanted (no stop, rebuild or newer start
// came in between) and otherwise hands it back for removal.
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/BackgroundQueue.h"
#include "platform/Clock.h"
#include "platform/PlatformPorts.h"
#include "platform/Signal.h"
#include "platform/Task.h"
#include "spectrum/BandSpectrum.h"
#include "spectrum/SampleRingBuffer.h"
#include "spectrum/SpectrumScale.h"
#include "spectrum/TapPipeline.h"

namespace corvanel {

class SpectrumAnalyzer : public std::enable_shared_from_this<SpectrumAnalyzer> {
  public:
    static constexpr std::size_t bandCount = SpectrumScale::bandCount;
    static constexpr Seconds tickInterval{0.033};
    static constexpr Seconds rebuildDelay{0.6};
    static constexpr Seconds peakHold{1.0};
    static constexpr Seconds channelStaleAfter{0.3};
    // Capture lost after its start is rebuilt after 1 s, then at doubling intervals up to 30 s,
    // for as long as it is wanted.
    static constexpr Seconds firstRecoveryDelay{1.0};
    static constexpr Seconds longestRecoveryDelay{30.0};
    static constexpr const char* enabledKey = "spectrumEnabled";

    // Prepares the transform and window, reads the stored menu-bar choice and starts capture
    // when it is on. Uses the executor, the audio hardware (default output device), the tap
    // host and the settings store of `ports`.
    static std::shared_ptr<SpectrumAnalyzer> create(PlatformPorts ports);
    ~SpectrumAnalyzer();

    SpectrumAnalyzer(const SpectrumAnalyzer&) = delete;
    SpectrumAnalyzer& operator=(const SpectrumAnalyzer&) = delete;

    // Published values; valuesChanged fires once per tick after all four are written.
    const std::vector<float>& levels() const { return levels_; }
    const std::vector<float>& peaks() const { return peaks_; }
    float leftLevel() const { return leftLevel_; }
    float rightLevel() const { return rightLevel_; }
    // The message of the last failed capture start; nothing while capture is fine or stopped.
    const std::optional<std::string>& statusMessage() const { return statusMessage_; }
    bool menuBarEnabled() const { return menuBarEnabled_; }
    std::int64_t visibleMeterWindows() const { return visibleMeterWindows_; }
    double tapSampleRate() const { return tapSampleRate_; }
    // True once a start has succeeded and its capture runs; false while a start is still under
    // way, after a failed one and after a stop.
    bool isCapturing() const { return pipeline_ != nullptr; }

    // The user's "Live EQ in menu bar" choice: stored every time, then capture is reconciled.
    void setMenuBarEnabled(bool enabled);
    // Clamped at 0; the caller reconciles (or uses the appeared/disappeared pair below).
    void setVisibleMeterWindows(std::int64_t count);
    void meterWindowAppeared();
    void meterWindowDisappeared();
    // Brings capture in line with demand.
    void reconcileCapture();
    // The default output device or its rate changed: rebuild 600 ms after the last such call.
    void deviceConfigurationChanged();

    // 40 centre frequencies, 20 Hz to 16 kHz, geometrically spaced.
    static const std::array<double, bandCount>& bandCenters();

    Signal<> valuesChanged;
    Signal<> stateChanged;

    // Only `create` can make one: tasks and the callback need it shared from the start.
    class ConstructionKey {
        friend class SpectrumAnalyzer;
        ConstructionKey() = default;
    };
    SpectrumAnalyzer(ConstructionKey, PlatformPorts ports);

  private:
    struct StartAttempt;

    bool captureWanted() const { return menuBarEnabled_ || visibleMeterWindows_ >= 1; }
    void startSequence();
    void finishStart(StartAttempt& attempt, std::uint64_t generation);
    // Starts that are under way will not be taken on; the running capture is removed.
    void dropCapture();
    static void release(BackgroundQueue& captureWork, std::unique_ptr<TapPipeline> pipeline);
    void captureLost(IOProcID proc, OSStatus status);
    void scheduleRecovery();
    void stop();
    void startAnalysisLoop();
    void updateLevels();
    void updateChannelLevels();
    void updatePeaks();
    void setStatusMessage(std::optional<std::string> message);

    static Task<> analysisLoop(std::weak_ptr<SpectrumAnalyzer> weak);
    static Task<> rebuildAfterDelay(std::weak_ptr<SpectrumAnalyzer> weak);
    static Task<> recoverAfterDelay(std::weak_ptr<SpectrumAnalyzer> weak, Seconds delay);

    PlatformPorts ports_;
    std::vector<float> levels_ = std::vector<float>(bandCount, 0.0f);
    std::vector<float> peaks_ = std::vector<float>(bandCount, 0.0f);
    float leftLevel_ = 0;
    float rightLevel_ = 0;
    std::optional<std::string> statusMessage_;
    std::array<MonoTime, bandCount> peakTimes_;
    bool menuBarEnabled_ = true;
    std::int64_t visibleMeterWindows_ = 0;
    std::optional<TaskHandle> analysisTask_;
    std::optional<TaskHandle> restartTask_;
    // While capture lost after its start is being won back: the wait before the next attempt.
    std::optional<Seconds> recoveryDelay_;
    std::shared_ptr<SampleRingBuffer> ring_;
    // Building and removing capture, in order, off the main thread.
    BackgroundQueue captureWork_;
    // The running capture, once a start has succeeded.
    std::unique_ptr<TapPipeline> pipeline_;
    double tapSampleRate_ = TapPipeline::defaultSampleRate;
    bool starting_ = false;
    // Counts what makes a start under way unwanted: a start carries the value it began with.
    std::uint64_t startGeneration_ = 0;
    BandSpectrum spectrum_;
};

}  // namespace corvanel
