#include "switching/SwitcherEngine.h"

#include <utility>

#include "switching/RateLabels.h"

namespace corvanel {

std::shared_ptr<SwitcherEngine> SwitcherEngine::create(PlatformPorts ports) {
    auto engine = std::make_shared<SwitcherEngine>(ConstructionKey{}, std::move(ports));
    engine->start();
    return engine;
}

SwitcherEngine::SwitcherEngine(ConstructionKey, PlatformPorts ports)
    : ports_(std::move(ports)), spectrum_(SpectrumAnalyzer::create(ports_)) {}

SwitcherEngine::~SwitcherEngine() = default;

void SwitcherEngine::start() {
    autoSwitchEnabled_ = readBool(*ports_.settings, autoSwitchKey, true);
    pauseDuringSwitch_ = readBool(*ports_.settings, pauseDuringSwitchKey, false);
    launchAtLogin_ = ports_.loginItems->status() == LoginItemStatus::enabled;
    refreshDevice();
    installDefaultDeviceListener();
    installMusicObservers();
    logStart();
    spawn(ports_.executor, startupScan(weak_from_this()));
}

std::string SwitcherEngine::format(double rate) {
    return formatRate(rate);
}

std::string SwitcherEngine::detectedText() const {
    return corvanel::detectedText(detection_);
}

std::string SwitcherEngine::deviceText() const {
    return corvanel::deviceText(deviceRate_, deviceBitDepth_);
}

std::string SwitcherEngine::menuBarTitle() const {
    return corvanel::menuBarTitle(deviceRate_, detection_);
}

void SwitcherEngine::setAutoSwitchEnabled(bool enabled) {
    ports_.settings->write(autoSwitchKey, enabled);
    assign(autoSwitchEnabled_, enabled);
}

void SwitcherEngine::setPauseDuringSwitch(bool enabled) {
    ports_.settings->write(pauseDuringSwitchKey, enabled);
    assign(pauseDuringSwitch_, enabled);
}

void SwitcherEngine::setLaunchAtLogin(bool enabled) {
    assign(launchAtLogin_, enabled);
    const std::optional<std::string> failure =
        enabled ? ports_.loginItems->registerApp() : ports_.loginItems->unregisterApp();
    if (failure) logLine("Login item change failed: " + *failure);
}

void SwitcherEngine::logLine(const std::string& text) {
    std::vector<std::string> lines = activity_;
    lines.insert(lines.begin(), ports_.timeOfDay(ports_.executor->wallNow()) + "  " + text);
    if (lines.size() > activityLimit) lines.resize(activityLimit);
    assign(activity_, std::move(lines));
}

}  // namespace corvanel
