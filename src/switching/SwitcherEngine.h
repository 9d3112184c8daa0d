#pragma once
// The model at the centre of rate switching: what the Music app is playing (as detected), the
// default output device with its rate, depth and supported rates, the activity log, the last
// scan error and the user's three settings. It follows the player's notifications and the
// hardware's listeners, and owns the spectrum analyzer. Main thread only; `changed` fires
// whenever an observed field really changes, and views re-read what they show.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/AudioHardware.h"
#include "platform/PlatformPorts.h"
#include "platform/PlayerNotifications.h"
#include "platform/Signal.h"
#include "platform/Task.h"
#include "spectrum/SpectrumAnalyzer.h"
#include "switching/MusicController.h"
#include "switching/RateDetection.h"

namespace corvanel {

class SwitcherEngine : public std::enable_shared_from_this<SwitcherEngine> {
  public:
    static constexpr const char* autoSwitchKey = "autoSwitchEnabled";
    static constexpr const char* pauseDuringSwitchKey = "pauseDuringSwitch";
    static constexpr std::size_t activityLimit = 20;
    static constexpr double startupScanSeconds = 1800;

    // Creates the analyzer, reads the settings and the output device, starts listening to the
    // hardware and the player, logs the start and spawns one scan of the last 30 minutes
    // (without waiting for it). Every port of `ports` but the workspace is used.
    static std::shared_ptr<SwitcherEngine> create(PlatformPorts ports);
    ~SwitcherEngine();

    SwitcherEngine(const SwitcherEngine&) = delete;
    SwitcherEngine& operator=(const SwitcherEngine&) = delete;

    // --- Observed fields ----------------------------------------------------------------------
    const std::optional<RateDetection>& detection() const { return detection_; }
    std::optional<AudioObjectID> deviceID() const { return deviceID_; }
    const std::string& deviceName() const { return deviceName_; }
    double deviceRate() const { return deviceRate_; }                 // Hz; 0 means unknown
    std::uint32_t deviceBitDepth() const { return deviceBitDepth_; }  // 0 means unknown
    const std::vector<double>& supportedRates() const { return supportedRates_; }
    const std::vector<std::string>& activity() const { return activity_; }  // newest first
    const std::optional<std::string>& lastError() const { return lastError_; }
    bool autoSwitchEnabled() const { return autoSwitchEnabled_; }
    bool pauseDuringSwitch() const { return pauseDuringSwitch_; }
    bool launchAtLogin() const { return launchAtLogin_; }
    const std::shared_ptr<SpectrumAnalyzer>& spectrum() const { return spectrum_; }

    std::string detectedText() const;
    std::string deviceText() const;
    std::string menuBarTitle() const;

    // --- Settings (each assignment is stored or registered, changed or not) -------------------
    void setAutoSwitchEnabled(bool enabled);
    void setPauseDuringSwitch(bool enabled);
    // Registers or unregisters the login item; a failure is logged and the value stays.
    void setLaunchAtLogin(bool enabled);

    // --- Operations ---------------------------------------------------------------------------
    // One scan of the last `secondsBack` seconds of log merged with the app's own report.
    Task<> scan(double secondsBack);
    // Sets the rate on the device at once (the menu's manual choice): no pause, no comparison.
    Task<> setRate(double rate, AudioObjectID device);
    // Adds a line to the activity log (newest first, 20 kept). The shell reports through it
    // what it found at start, such as a settings file it could not read.
    void logLine(const std::string& text);

    // --- Rules --------------------------------------------------------------------------------
    static std::string format(double rate);
    // The exact rate, else the smallest whole multiple above, else the smallest rate above,
    // else the largest; absent for an empty list.
    static std::optional<double> bestRate(double sourceRate, const std::vector<double>& rates);
    // The app's rate wins; the log adds its depth only when it agrees on the rate within 1 Hz.
    static RateDetection trackDetection(const MusicController::TrackTechnicals& technicals,
                                        const std::optional<RateDetection>& logDetection,
                                        WallTime now);

    Signal<> changed;

    // Only `create` makes one: listeners and tasks need it shared from the start.
    class ConstructionKey {
        friend class SwitcherEngine;
        ConstructionKey() = default;
    };
    SwitcherEngine(ConstructionKey, PlatformPorts ports);

  private:
    void start();
    // Stores a new value in an observed field and notifies when it differs.
    template <typename T, typename U>
    void assign(T& field, U&& value) {
        if (field == value) return;
        field = std::forward<U>(value);
        changed.emit();
    }

    // Track changes
    void installMusicObservers();
    // The first activity line names the player followed; where players come and go, each
    // change of the followed player gets a line too.
    void logStart();
    void logFollowedPlayer();
    void scheduleScans();
    static Task<> delayedScan(std::weak_ptr<SwitcherEngine> weak, double delay,
                              std::int64_t generation);
    static Task<> startupScan(std::weak_ptr<SwitcherEngine> weak);
    static Task<> runScan(std::shared_ptr<SwitcherEngine> self, double secondsBack);
    static Task<> handleNewDetection(std::shared_ptr<SwitcherEngine> self, RateDetection found);

    // Applying a rate
    static Task<> applyDetection(std::shared_ptr<SwitcherEngine> self, RateDetection found);
    static Task<> runSetRate(std::shared_ptr<SwitcherEngine> self, double rate,
                             AudioObjectID device);
    void setRateNow(double rate, AudioObjectID device);
    void applyMaxBitDepth(AudioObjectID device);

    // Device listeners
    void refreshDevice();
    void installDefaultDeviceListener();
    void handleDefaultDeviceChanged();
    void refreshDeviceRate();

    PlatformPorts ports_;
    std::optional<RateDetection> detection_;
    std::optional<AudioObjectID> deviceID_;
    std::string deviceName_ = "No output device";
    double deviceRate_ = 0;
    std::uint32_t deviceBitDepth_ = 0;
    std::vector<double> supportedRates_;
    std::vector<std::string> activity_;
    std::optional<std::string> lastError_;
    bool autoSwitchEnabled_ = true;
    bool pauseDuringSwitch_ = false;
    bool launchAtLogin_ = false;
    std::shared_ptr<SpectrumAnalyzer> spectrum_;
    std::int64_t scanGeneration_ = 0;
    std::vector<NotificationObserverToken> observers_;
    Connection followedPlayerChanged_;
    std::optional<PropertyListenerID> rateListener_;
    std::optional<AudioObjectID> listeningDeviceID_;
};

}  // namespace corvanel
