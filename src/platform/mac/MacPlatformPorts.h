#pragma once
// The macOS adapters behind the ports. Each make function builds one adapter (its body is an
// Objective-C++ file of this folder); makeMacPlatformPorts bundles them with the Qt-side ports
// that are the same on every platform (main executor, settings store, time of day).
#include <memory>

#include "platform/PlatformPorts.h"

namespace corvanel {

std::shared_ptr<AudioHardware> makeMacAudioHardware();
// Tap formats and UIDs are audio-object properties, read through `audio`.
std::shared_ptr<ProcessTapHost> makeMacProcessTapHost(std::shared_ptr<AudioHardware> audio);
std::shared_ptr<SystemLog> makeMacSystemLog();
std::shared_ptr<ScriptRunner> makeMacScriptRunner();
std::shared_ptr<PlayerNotifications> makeMacPlayerNotifications();
std::shared_ptr<LoginItems> makeMacLoginItems();
std::shared_ptr<Workspace> makeMacWorkspace();

PlatformPorts makeMacPlatformPorts(std::shared_ptr<MainExecutor> executor,
                                   std::shared_ptr<SettingsStore> settings,
                                   TimeOfDayFormatter timeOfDay);

}  // namespace corvanel
