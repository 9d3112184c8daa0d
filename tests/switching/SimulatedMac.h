#pragma once
// One simulated Mac for the engine tests: every port on virtual time, an output device
// factory, and one journal in which the Music app's scripts and the hardware's writes appear in
// the order they happened.
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "demo/MusicSynthesizer.h"
#include "platform/MusicScripts.h"
#include "platform/PlatformPorts.h"
#include "platform/sim/SimAudioHardware.h"
#include "platform/sim/SimLoginItems.h"
#include "platform/sim/SimMusicApp.h"
#include "platform/sim/SimPlayerNotifications.h"
#include "platform/sim/SimProcessTapHost.h"
#include "platform/sim/SimSettingsStore.h"
#include "platform/sim/SimSystemLog.h"
#include "platform/sim/VirtualTimeExecutor.h"
#include "switching/RateLabels.h"

namespace corvanel::testing {

// The player's scripts by a short name; any other text as it is.
inline std::string scriptLabel(const std::string& script) {
    const std::pair<const char*, const char*> labels[] = {
        {MusicScripts::playerState, "state"}, {MusicScripts::pause, "pause"},
        {MusicScripts::play, "play"},         {MusicScripts::readPosition, "position"},
        {MusicScripts::rewind, "rewind"},     {MusicScripts::trackTechnicals, "technicals"}};
    for (const auto& [text, label] : labels) {
        if (script == text) return label;
    }
    return script;
}

// Virtual wall time as UTC "HH:MM:SS", so activity lines are exact.
inline std::string utcTimeOfDay(WallTime time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[16];
    std::strftime(text, sizeof text, "%H:%M:%S", &utc);
    return text;
}

struct SimulatedMac {
    SimulatedMac(const SimulatedMac&) = delete;
    SimulatedMac& operator=(const SimulatedMac&) = delete;
    // The end of the run, as the application ends it: work still pending (a capture job holds
    // the hardware, which holds the executor that holds the job) is dropped, not kept alive.
    ~SimulatedMac() { executor->shutDown(); }

    std::shared_ptr<VirtualTimeExecutor> executor = std::make_shared<VirtualTimeExecutor>();
    std::shared_ptr<SimAudioHardware> audio = std::make_shared<SimAudioHardware>(executor);
    std::shared_ptr<SimProcessTapHost> taps = std::make_shared<SimProcessTapHost>(
        std::make_shared<MusicSynthesizer>(), SimProcessTapHost::Pacing::manual);
    std::shared_ptr<SimSystemLog> log = std::make_shared<SimSystemLog>(executor);
    std::shared_ptr<SimMusicApp> music = std::make_shared<SimMusicApp>(executor);
    std::shared_ptr<SimPlayerNotifications> notifications =
        std::make_shared<SimPlayerNotifications>(executor);
    std::shared_ptr<SimSettingsStore> settings = std::make_shared<SimSettingsStore>();
    std::shared_ptr<SimLoginItems> loginItems = std::make_shared<SimLoginItems>();
    // Scripts by a short label (scriptLabel), rate writes as "write <rate> on <device>".
    std::vector<std::string> journal;

    SimulatedMac() {
        // The analyzer stays idle unless a test turns it on.
        settings->preset("spectrumEnabled", false);
        music->setScriptObserver(
            [this](const std::string& script) { journal.push_back(scriptLabel(script)); });
        audio->setWriteObserver([this](const SimAudioHardware::Write& write) {
            if (write.address.mSelector == kAudioDevicePropertyNominalSampleRate)
                journal.push_back("write " + formatRate(write.rate()) + " on " +
                                  std::to_string(write.object));
        });
    }

    PlatformPorts ports() const {
        PlatformPorts ports;
        ports.executor = executor;
        ports.audio = audio;
        ports.taps = taps;
        ports.systemLog = log;
        ports.scripts = music;
        ports.notifications = notifications;
        ports.settings = settings;
        ports.loginItems = loginItems;
        ports.timeOfDay = utcTimeOfDay;
        return ports;
    }

    // A device offering `rates` (discrete), with one output stream offering 16-bit and
    // `deepest`-bit linear PCM at each of them and running at 16 bits.
    AudioObjectID addDevice(const std::string& name, double rate, std::vector<double> rates,
                            std::uint32_t deepest = 24) {
        SimAudioHardware::DeviceSpec setup;
        setup.name = name;
        setup.uid = name + "-uid";
        setup.nominalRate = rate;
        SimAudioHardware::StreamSpec stream;
        for (const double offered : rates) {
            setup.availableRates.push_back({offered, offered});
            stream.availableFormats.push_back(SimAudioHardware::linearPCM(offered, 16));
            stream.availableFormats.push_back(SimAudioHardware::linearPCM(offered, deepest));
        }
        stream.physicalFormat = SimAudioHardware::linearPCM(rate, 16).mFormat;
        setup.outputStreams.push_back(stream);
        return audio->addDevice(setup);
    }

    // The nominal-rate writes so far, as "<rate> on <device>".
    std::vector<std::string> rateWrites() const {
        std::vector<std::string> writes;
        for (const SimAudioHardware::Write& write : audio->writes()) {
            if (write.address.mSelector == kAudioDevicePropertyNominalSampleRate)
                writes.push_back(formatRate(write.rate()) + " on " + std::to_string(write.object));
        }
        return writes;
    }

    WallTime secondsIn(double seconds) const {
        return executor->wallNow() +
               std::chrono::duration_cast<WallTime::duration>(Seconds{seconds});
    }

    void postPlayerState(const std::string& state,
                         const std::string& name = "com.apple.Music.playerInfo") {
        notifications->post(name, UserInfo{{"Player State", state}});
    }
};

// The text of an activity line without its time of day.
inline std::string withoutTime(const std::string& line) {
    const std::size_t gap = line.find("  ");
    return gap == std::string::npos ? line : line.substr(gap + 2);
}

inline std::vector<std::string> activityTexts(const std::vector<std::string>& lines) {
    std::vector<std::string> texts;
    for (const std::string& line : lines)
        texts.push_back(withoutTime(line));
    return texts;
}

}  // namespace corvanel::testing
