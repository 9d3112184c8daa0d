#pragma once
// The one place that decides which adapters a run uses: the simulated Mac of demo mode (the
// only choice where there is no Music app to follow), or a platform's native adapters. The
// shell's own platform pieces, the status item and the window chrome, are chosen here too.
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "app/AppEnvironment.h"
#include "app/AppOptions.h"
#include "app/StatusItem.h"
#include "app/WindowChrome.h"
#include "platform/PlatformPorts.h"
#include "platform/qt/LocalWorkspace.h"

namespace corvanel {

class DemoPlayer;
class DesktopPalette;

// The status item and how often its label may change: a tray in another process cannot take
// the analyzer's 30 images a second, a window of our own can.
struct StatusItemChoice {
    std::unique_ptr<StatusItem> item;
    Seconds labelInterval{0};
};

struct Composition {
    PlatformPorts ports;
    WindowChromeFactory windowChrome;
    std::function<StatusItemChoice()> makeStatusItem;
    // Ends the application; QCoreApplication::quit when not given.
    std::function<void()> quit;
    // Demo mode's Music app at work; absent otherwise.
    std::shared_ptr<DemoPlayer> demo;
    // What the popup says about the capture this run uses.
    QString privacyNote;
    // The system's tool for the output device that the popup offers.
    SoundSettingsApp soundSettings;
    // Copies a user starts keep to one; a headless diagnostic run leaves the running copy alone.
    bool singleInstance = true;
    // What the user is told once in the activity log at start: a settings file that could not
    // be read, a sound server or bus that could not be reached.
    std::vector<std::string> notices;
};

// Demo mode's tracks last this long (the playlist repeats).
inline constexpr double demoTrackSeconds = 14;
// At most this many label images a second reach a StatusNotifierItem tray.
inline constexpr double trayLabelsPerSecond = 10;

// The composition, or the message that says why it cannot be built (an unreadable audio file).
// A tray icon takes its colours from `desktop`.
std::variant<Composition, std::string> composePlatform(const AppOptions& options,
                                                       LocalWorkspace::Actions workspaceActions,
                                                       std::shared_ptr<DesktopPalette> desktop);

// Brings the user's login item up to date with this program when the application starts: on
// Linux an autostart entry left by a moved or another copy is rewritten to start this one. The
// message says why it could not be; macOS keeps its login items itself.
std::optional<std::string> refreshLoginItem();

// Whether this platform has native adapters for the player and the hardware; without them every
// run is a demo.
bool hasNativePlatform();

}  // namespace corvanel
