// Device listeners: the default output device and its nominal rate follow the hardware.
#include <cmath>

#include "switching/CoreAudioHelper.h"
#include "switching/PropertyReads.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

const AudioObjectPropertyAddress nominalRateAddress =
    globalAddress(kAudioDevicePropertyNominalSampleRate);

// A listener callback that runs `action` on the engine in a main-thread task, if the engine
// still exists by then.
AudioHardware::PropertyListener onEngine(std::weak_ptr<SwitcherEngine> weak,
                                         std::weak_ptr<MainExecutor> executor,
                                         void (*action)(SwitcherEngine&)) {
    return [weak, executor, action] {
        const auto target = executor.lock();
        if (!target) return;
        target->post([weak, action] {
            if (const auto engine = weak.lock()) action(*engine);
        });
    };
}

}  // namespace

void SwitcherEngine::refreshDevice() {
    AudioHardware& audio = *ports_.audio;
    if (listeningDeviceID_ && rateListener_) {
        audio.removePropertyListener(*listeningDeviceID_, nominalRateAddress, *rateListener_);
        listeningDeviceID_.reset();
        rateListener_.reset();
    }
    const std::optional<AudioObjectID> device = CoreAudioHelper::defaultOutputDevice(audio);
    assign(deviceID_, device);
    if (!device) {
        assign(deviceName_, "No output device");
        assign(deviceRate_, 0.0);
        assign(supportedRates_, std::vector<double>{});
        return;
    }
    assign(deviceName_, CoreAudioHelper::deviceName(audio, *device));
    assign(deviceRate_, CoreAudioHelper::nominalRate(audio, *device));
    assign(supportedRates_, CoreAudioHelper::availableSampleRates(audio, *device));
    applyMaxBitDepth(*device);

    PropertyListenerID listener = 0;
    // The registration's status is not examined: a device that refuses simply never reports.
    audio.addPropertyListener(*device, nominalRateAddress,
                              onEngine(weak_from_this(), ports_.executor,
                                       [](SwitcherEngine& engine) { engine.refreshDeviceRate(); }),
                              listener);
    rateListener_ = listener;
    listeningDeviceID_ = *device;
}

void SwitcherEngine::installDefaultDeviceListener() {
    PropertyListenerID listener = 0;
    ports_.audio->addPropertyListener(
        kAudioObjectSystemObject, globalAddress(kAudioHardwarePropertyDefaultOutputDevice),
        onEngine(weak_from_this(), ports_.executor,
                 [](SwitcherEngine& engine) { engine.handleDefaultDeviceChanged(); }),
        listener);
}

void SwitcherEngine::handleDefaultDeviceChanged() {
    refreshDevice();
    logLine("Output device now " + deviceName_);
    spectrum_->deviceConfigurationChanged();
    if (detection_) spawn(ports_.executor, applyDetection(shared_from_this(), *detection_));
}

void SwitcherEngine::refreshDeviceRate() {
    if (!deviceID_) return;
    const double rate = CoreAudioHelper::nominalRate(*ports_.audio, *deviceID_);
    const bool rateChanged = std::fabs(rate - deviceRate_) > 0.5;
    if (rateChanged) {
        assign(deviceRate_, rate);
        applyMaxBitDepth(*deviceID_);
    }
    // The tap runs at the device's rate. After Corvanel's own switch the new rate is already
    // stored, but the capture still runs at the old one and every band would be shifted by the
    // ratio of the two rates: it is rebuilt as after any other change.
    if (rateChanged || (rate > 0 && std::fabs(rate - spectrum_->tapSampleRate()) > 0.5))
        spectrum_->deviceConfigurationChanged();
}

}  // namespace corvanel
