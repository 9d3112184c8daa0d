#pragma once
// The set of ports one run uses. Composition (which adapters) happens once, at start-up; the
// engine and the analyzer take what they need from here.
#include <functional>
#include <memory>
#include <string>

#include "platform/AudioHardware.h"
#include "platform/Clock.h"
#include "platform/FollowedPlayer.h"
#include "platform/LoginItems.h"
#include "platform/MainExecutor.h"
#include "platform/PlayerNotifications.h"
#include "platform/ProcessTapHost.h"
#include "platform/ScriptRunner.h"
#include "platform/SettingsStore.h"
#include "platform/SystemLog.h"
#include "platform/Workspace.h"

namespace corvanel {

// The local time of day in the user's standard time style, without a date (3:04:05 PM for a US
// English user).
using TimeOfDayFormatter = std::function<std::string(WallTime)>;

// A formatter from the C++ environment locale (strftime "%X"); the Qt shell supplies one from
// the system locale.
std::string environmentTimeOfDay(WallTime time);

struct PlatformPorts {
    std::shared_ptr<MainExecutor> executor;
    std::shared_ptr<AudioHardware> audio;
    std::shared_ptr<ProcessTapHost> taps;
    std::shared_ptr<SystemLog> systemLog;
    std::shared_ptr<ScriptRunner> scripts;
    std::shared_ptr<PlayerNotifications> notifications;
    std::shared_ptr<SettingsStore> settings;
    std::shared_ptr<LoginItems> loginItems;
    std::shared_ptr<Workspace> workspace;
    // Absent where the Music app is the one player to follow.
    std::shared_ptr<FollowedPlayer> player;
    TimeOfDayFormatter timeOfDay = environmentTimeOfDay;
};

}  // namespace corvanel
