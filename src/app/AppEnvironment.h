#pragma once
// What every view of the shell receives from the application, as a view environment would hand
// it down: the engine (and through it the analyzer), the ports a view acts through, and the
// application's actions.
#include <QPoint>
#include <QString>
#include <functional>
#include <memory>
#include <string>

#include "platform/FollowedPlayer.h"
#include "platform/MainExecutor.h"
#include "platform/SettingsStore.h"
#include "platform/Workspace.h"

namespace corvanel {

class SwitcherEngine;
class WindowList;

struct SoundSettingsApp {
    QString title = QStringLiteral("Audio MIDI Setup");
    std::string path = "/System/Applications/Utilities/Audio MIDI Setup.app";
};

struct AppEnvironment {
    std::shared_ptr<SwitcherEngine> engine;
    std::shared_ptr<MainExecutor> executor;
    std::shared_ptr<SettingsStore> settings;
    std::shared_ptr<Workspace> workspace;
    // The application's open windows, in the order they were opened.
    std::shared_ptr<WindowList> windows;
    // Opens the window with this identifier ("panel", "visualizer"), or brings it forward.
    std::function<void(const QString& identifier)> openWindow;
    // Ends the application.
    std::function<void()> quit;
    // The pointer's position in screen coordinates (the same space as window frames).
    std::function<QPoint()> pointerPosition;
    // What the popup says about the meters' capture: what is heard, and that nothing is kept.
    QString privacyNote;
    // The system's own tool for the output device, offered in the popup's footer when present.
    SoundSettingsApp soundSettings;
    // The player followed where players come and go (Linux); absent where it is the Music app.
    std::shared_ptr<FollowedPlayer> player;
};

}  // namespace corvanel
