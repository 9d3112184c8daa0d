// Track changes: the player's notifications, the delayed scans, and the merge of the log with
// the app's own report.
#include <cmath>
#include <utility>

#include "switching/LogScanner.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

constexpr const char* playerNotifications[] = {"com.apple.Music.playerInfo",
                                               "com.apple.iTunes.playerInfo"};
// The app writes its decoder messages a little after a track starts.
constexpr double scanDelays[] = {0.6, 2.5, 5.0};
constexpr double scanMargin = 8.0;

std::optional<std::string> playerState(const std::optional<UserInfo>& userInfo) {
    if (!userInfo) return std::nullopt;
    const auto found = userInfo->find("Player State");
    if (found == userInfo->end()) return std::nullopt;
    if (const auto* text = std::get_if<std::string>(&found->second)) return *text;
    return std::nullopt;
}

std::string detectionSuffix(const RateDetection& found) {
    if (found.bitDepth) return " / " + std::to_string(*found.bitDepth) + "-bit";
    if (found.bitRateKbps) return " / " + std::to_string(*found.bitRateKbps) + " kbps";
    return {};
}

}  // namespace

void SwitcherEngine::installMusicObservers() {
    const std::weak_ptr<SwitcherEngine> weak = weak_from_this();
    const std::weak_ptr<MainExecutor> executor = ports_.executor;
    for (const char* name : playerNotifications) {
        observers_.push_back(ports_.notifications->addObserver(
            name, [weak, executor](const std::optional<UserInfo>& userInfo) {
                if (weak.expired()) return;
                const auto target = executor.lock();
                if (!target) return;
                target->post([weak, state = playerState(userInfo)] {
                    const auto engine = weak.lock();
                    if (engine && state == "Playing") engine->scheduleScans();
                });
            }));
    }
}

void SwitcherEngine::scheduleScans() {
    const std::int64_t generation = ++scanGeneration_;
    for (const double delay : scanDelays)
        spawn(ports_.executor, delayedScan(weak_from_this(), delay, generation));
}

Task<> SwitcherEngine::delayedScan(std::weak_ptr<SwitcherEngine> weak, double delay,
                                   std::int64_t generation) {
    co_await sleepFor(Seconds{delay});
    const auto engine = weak.lock();
    if (!engine || engine->scanGeneration_ != generation) co_return;
    co_await runScan(engine, delay + scanMargin);
}

Task<> SwitcherEngine::startupScan(std::weak_ptr<SwitcherEngine> weak) {
    const auto engine = weak.lock();
    if (!engine) co_return;
    co_await runScan(engine, startupScanSeconds);
}

Task<> SwitcherEngine::scan(double secondsBack) {
    return runScan(shared_from_this(), secondsBack);
}

Task<> SwitcherEngine::runScan(std::shared_ptr<SwitcherEngine> self, double secondsBack) {
    // A named awaiter: GCC destroys captures of a temporary awaited lambda twice.
    auto readLog = runInBackground([log = self->ports_.systemLog, secondsBack] {
        return LogScanner::scanRecentLogs(*log, secondsBack);
    });
    const ScanOutcome outcome = co_await readLog;
    const auto technicals = MusicController::currentTrackTechnicals(*self->ports_.scripts);
    const WallTime now = self->ports_.executor->wallNow();

    // The detection to hand on is worked out before any co_await: GCC mishandles conditional
    // expressions and temporaries inside an awaited call's arguments.
    std::optional<RateDetection> result;
    if (const auto* found = std::get_if<ScanFound>(&outcome)) {
        self->assign(self->lastError_, std::nullopt);
        result = found->detection;
        if (technicals) result = trackDetection(*technicals, found->detection, now);
    } else if (const auto* failed = std::get_if<ScanFailed>(&outcome)) {
        if (technicals) {
            self->assign(self->lastError_, std::nullopt);
            result = trackDetection(*technicals, std::nullopt, now);
        } else {
            self->assign(self->lastError_, failed->message);
            self->logLine("Log scan failed");
        }
    } else {
        self->assign(self->lastError_, std::nullopt);
        if (technicals) result = trackDetection(*technicals, std::nullopt, now);
    }
    if (result) co_await handleNewDetection(self, std::move(*result));
}

RateDetection SwitcherEngine::trackDetection(const MusicController::TrackTechnicals& technicals,
                                             const std::optional<RateDetection>& logDetection,
                                             WallTime now) {
    RateDetection merged;
    merged.sampleRate = technicals.sampleRate;
    if (logDetection && std::fabs(logDetection->sampleRate - technicals.sampleRate) < 1.0) {
        merged.bitDepth = logDetection->bitDepth;
        if (!merged.bitDepth) merged.bitRateKbps = technicals.bitRateKbps;
    } else {
        merged.bitRateKbps = technicals.bitRateKbps;
    }
    merged.source = technicals.kind;
    merged.date = logDetection ? logDetection->date : now;
    merged.rawMessage = "Music track technicals (" + technicals.kind + ")";
    return merged;
}

Task<> SwitcherEngine::handleNewDetection(std::shared_ptr<SwitcherEngine> self,
                                          RateDetection found) {
    if (self->detection_ && hasSameFormat(*self->detection_, found)) co_return;
    self->assign(self->detection_, found);
    self->logLine("Detected " + format(found.sampleRate) + " kHz" + detectionSuffix(found) + " (" +
                  found.source + ")");
    co_await applyDetection(self, std::move(found));
}

}  // namespace corvanel
