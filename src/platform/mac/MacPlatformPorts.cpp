#include "platform/mac/MacPlatformPorts.h"

#include <utility>

namespace corvanel {

PlatformPorts makeMacPlatformPorts(std::shared_ptr<MainExecutor> executor,
                                   std::shared_ptr<SettingsStore> settings,
                                   TimeOfDayFormatter timeOfDay) {
    PlatformPorts ports;
    ports.executor = std::move(executor);
    ports.audio = makeMacAudioHardware();
    ports.taps = makeMacProcessTapHost(ports.audio);
    ports.systemLog = makeMacSystemLog();
    ports.scripts = makeMacScriptRunner();
    ports.notifications = makeMacPlayerNotifications();
    ports.settings = std::move(settings);
    ports.loginItems = makeMacLoginItems();
    ports.workspace = makeMacWorkspace();
    ports.timeOfDay = std::move(timeOfDay);
    return ports;
}

}  // namespace corvanel
