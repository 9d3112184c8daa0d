// Applying a rate: the choice of the nominal rate, the optional pause around the switch, the
// write itself and the output depth raise.
#include <algorithm>
#include <cmath>
#include <utility>

#include "switching/CoreAudioHelper.h"
#include "switching/PropertyReads.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

constexpr int pauseConfirmAttempts = 10;
constexpr Seconds settleAfterSwitch{0.5};

std::optional<double> smallestAbove(double sourceRate, const std::vector<double>& rates,
                                    bool multiplesOnly) {
    std::optional<double> best;
    for (const double rate : rates) {
        if (!(rate > sourceRate)) continue;
        if (multiplesOnly) {
            const double ratio = rate / sourceRate;
            if (!(std::fabs(std::round(ratio) - ratio) < 0.001)) continue;
        }
        if (!best || rate < *best) best = rate;
    }
    return best;
}

}  // namespace

std::optional<double> SwitcherEngine::bestRate(double sourceRate,
                                               const std::vector<double>& rates) {
    if (rates.empty()) return std::nullopt;
    for (const double rate : rates) {
        if (std::fabs(rate - sourceRate) < 1.0) return rate;
    }
    if (auto multiple = smallestAbove(sourceRate, rates, true)) return multiple;
    if (auto above = smallestAbove(sourceRate, rates, false)) return above;
    return *std::max_element(rates.begin(), rates.end());
}

Task<> SwitcherEngine::applyDetection(std::shared_ptr<SwitcherEngine> self, RateDetection found) {
    if (!self->autoSwitchEnabled_ || !self->deviceID_) co_return;
    // Device and target are fixed now; a device change during the waits below does not move
    // the switch to the new device.
    const AudioObjectID device = *self->deviceID_;
    const std::optional<double> target = bestRate(found.sampleRate, self->supportedRates_);
    if (!target) {
        self->logLine(self->deviceName_ + " does not allow sample rate changes");
        co_return;
    }
    if (std::fabs(*target - self->deviceRate_) < 0.5) co_return;
    if (std::fabs(*target - found.sampleRate) > 0.5) {
        self->logLine("Device lacks " + format(found.sampleRate) + " kHz, using " +
                      format(*target) + " kHz");
    }
    if (!self->pauseDuringSwitch_) {
        self->setRateNow(*target, device);
        co_return;
    }
    const std::shared_ptr<ScriptRunner> scripts = self->ports_.scripts;
    if (MusicController::runScript(*scripts, MusicScripts::playerState) != "playing") {
        self->setRateNow(*target, device);
        co_return;
    }
    MusicController::runScript(*scripts, MusicScripts::pause);
    co_await MusicController::awaitState(scripts, "paused", pauseConfirmAttempts);
    self->setRateNow(*target, device);
    co_await sleepFor(settleAfterSwitch);
    co_await MusicController::restartTrackAndPlay(scripts);
}

Task<> SwitcherEngine::setRate(double rate, AudioObjectID device) {
    return runSetRate(shared_from_this(), rate, device);
}

Task<> SwitcherEngine::runSetRate(std::shared_ptr<SwitcherEngine> self, double rate,
                                  AudioObjectID device) {
    self->setRateNow(rate, device);
    co_return;
}

void SwitcherEngine::setRateNow(double rate, AudioObjectID device) {
    AudioHardware& audio = *ports_.audio;
    // A switch keeps the device it started with. When the default device changed during its
    // waits, the shown fields belong to the new device: the write, its lines and the depth are
    // the old device's, and the shown device changes only through its own listener.
    const bool shown = deviceID_ == device;
    const std::string name = shown ? deviceName_ : CoreAudioHelper::deviceName(audio, device);
    const double value = rate;
    const OSStatus status = audio.setPropertyData(
        device, globalAddress(kAudioDevicePropertyNominalSampleRate), sizeof value, &value);
    if (status != kNoErr) {
        logLine("Failed to set " + format(rate) + " kHz on " + name);
        return;
    }
    const std::string switched = name + " \u2192 " + format(rate) + " kHz";
    if (!shown) {
        logLine(switched);
        CoreAudioHelper::setMaxBitDepth(audio, device, rate);
        return;
    }
    // The rate listener confirms later; until then the written rate stands.
    assign(deviceRate_, rate);
    logLine(switched);
    applyMaxBitDepth(device);
}

void SwitcherEngine::applyMaxBitDepth(AudioObjectID device) {
    if (!(deviceRate_ > 0)) {
        assign(deviceBitDepth_, std::uint32_t{0});
        return;
    }
    const std::uint32_t previous = deviceBitDepth_;
    const std::uint32_t depth =
        CoreAudioHelper::setMaxBitDepth(*ports_.audio, device, deviceRate_).value_or(0);
    assign(deviceBitDepth_, depth);
    if (depth == 0 || depth == previous) return;
    logLine(deviceName_ + " output depth \u2192 " + std::to_string(depth) + "-bit (max)");
}

}  // namespace corvanel
