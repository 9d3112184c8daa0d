#pragma once
// Linux outside the demo: the default sink through PipeWire, the music player through MPRIS on
// the session bus, the meters from the default sink's monitor. Whatever cannot be reached is
// said plainly, and the rest still runs: the meters without PipeWire, the output device without
// a player.
#include <QString>
#include <memory>
#include <string>
#include <vector>

#include "platform/PlatformPorts.h"

namespace corvanel {

struct LinuxPlatformPorts {
    // The audio, player, log, followed-player and capture ports; the caller adds the rest.
    PlatformPorts ports;
    // Activity lines for what could not be reached.
    std::vector<std::string> notices;
    // The popup's note on what is heard and what can be switched.
    QString privacyNote;
};

// On the main thread, with Qt's event loop as `executor`'s. Waits at most about a second for
// PipeWire, before any window exists.
LinuxPlatformPorts makeLinuxPlatformPorts(std::shared_ptr<MainExecutor> executor,
                                          std::shared_ptr<ProcessTapHost> taps);

}  // namespace corvanel
