#include "app/PlatformComposition.h"

#include <QSystemTrayIcon>

#include "app/FramelessWindowChrome.h"
#include "app/TrayStatusItem.h"
#include "app/WindowStatusItem.h"
#include "demo/DemoDac.h"
#include "demo/DemoPlayer.h"
#include "demo/MusicSynthesizer.h"
#include "platform/qt/QtMainExecutor.h"
#include "platform/qt/QtSettingsStore.h"
#include "platform/qt/QtTimeOfDay.h"
#include "platform/sim/AudioFileSource.h"
#include "platform/sim/SimAudioHardware.h"
#include "platform/sim/SimLoginItems.h"
#include "platform/sim/SimProcessTapHost.h"
#if defined(__linux__)
#include "app/linux/LinuxPlatformPorts.h"
#include "app/linux/StatusNotifierItem.h"
#include "platform/linux/PulseCaptureHost.h"
#include "platform/qt/DesktopEntries.h"
#include "platform/qt/XdgAutostart.h"
#endif
#if defined(__APPLE__)
#include <QGuiApplication>

#include "app/mac/MacStatusItem.h"
#include "app/mac/MacWindowChrome.h"
#include "platform/mac/MacPlatformPorts.h"
#endif

namespace corvanel {
namespace {

StatusItemChoice makeWindowStatusItem() {
    return {std::make_unique<WindowStatusItem>(), Seconds{0}};
}

StatusItemChoice makeDesktopStatusItem(const std::shared_ptr<DesktopPalette>& desktop) {
    constexpr Seconds trayInterval{1.0 / trayLabelsPerSecond};
#if defined(__linux__)
    // Our own item where a host shows StatusNotifierItems: it can carry the title as text.
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (StatusNotifierItem::hostAvailable(bus))
        return {std::make_unique<StatusNotifierItem>(bus, desktop), trayInterval};
#endif
    if (QSystemTrayIcon::isSystemTrayAvailable())
        return {std::make_unique<TrayStatusItem>(desktop), trayInterval};
    // Without a tray (no StatusNotifierItem host, the offscreen platform) a small window of
    // our own carries the label, so the application is never invisible.
    return makeWindowStatusItem();
}
WindowChromeFactory desktopWindowChrome() {
    return FramelessWindowChrome::factory();
}

std::variant<std::shared_ptr<ProcessTapHost>, std::string> demoTaps(const AppOptions& options) {
    switch (options.audio) {
        case AudioSourceChoice::pulse:
#if defined(__linux__)
            return std::make_shared<PulseCaptureHost>();
#else
            return std::string("--capture pulse is only available on Linux");
#endif
        case AudioSourceChoice::file: {
            auto opened = AudioFileSource::open(options.audioFile.toStdString());
            if (auto* message = std::get_if<std::string>(&opened)) return *message;
            std::shared_ptr<AudioSource> file =
                std::move(std::get<std::unique_ptr<AudioFileSource>>(opened));
            return std::make_shared<SimProcessTapHost>(std::move(file));
        }
        case AudioSourceChoice::synthesizer:
            break;
    }
    return std::make_shared<SimProcessTapHost>(std::make_shared<MusicSynthesizer>());
}

// The popup's note on what the meters hear. On macOS it is always the system-audio permission's
// note; elsewhere it says what this run really listens to.
QString privacyNoteFor(const AppOptions& options) {
#if defined(__APPLE__)
    (void)options;
    return QStringLiteral(
        "Uses the System Audio Recording permission to see what your Mac plays — output only, "
        "never the microphone. Analyzed live, never recorded.");
#else
    if (options.audio == AudioSourceChoice::pulse)
        return QStringLiteral(
            "Listens to what your computer plays through the sound server — output only, never "
            "the microphone. Analyzed live, never recorded.");
    return QStringLiteral(
        "The meters show the demo's own music; nothing your computer plays is listened to or "
        "recorded.");
#endif
}

}  // namespace

std::optional<std::string> refreshLoginItem() {
#if defined(__linux__)
    return XdgAutostart::forCurrentUser().refresh();
#else
    return std::nullopt;
#endif
}

bool hasNativePlatform() {
#if defined(__APPLE__) || defined(__linux__)
    return true;
#else
    return false;
#endif
}

std::variant<Composition, std::string> composePlatform(const AppOptions& options,
                                                       LocalWorkspace::Actions workspaceActions,
                                                       std::shared_ptr<DesktopPalette> desktop) {
    auto taps = demoTaps(options);
    if (auto* message = std::get_if<std::string>(&taps)) return *message;

    Composition composition;
    PlatformPorts& ports = composition.ports;
    auto executor = std::make_shared<QtMainExecutor>();
    ports.executor = executor;
    auto settings = options.settingsFile ? std::make_shared<QtSettingsStore>(*options.settingsFile)
                                         : std::make_shared<QtSettingsStore>();
    if (auto notice = settings->startupNotice()) composition.notices.push_back(*notice);
    ports.settings = std::move(settings);
    composition.singleInstance = !options.headless;
    ports.workspace = std::make_shared<LocalWorkspace>(LocalWorkspace::defaultSocketPath(),
                                                       std::move(workspaceActions));
    ports.timeOfDay = systemTimeOfDay;
    composition.windowChrome = desktopWindowChrome();
    // A headless run is a diagnostic: it puts nothing in the user's tray.
    if (options.headless)
        composition.makeStatusItem = makeWindowStatusItem;
    else
        composition.makeStatusItem = [desktop] { return makeDesktopStatusItem(desktop); };
    composition.privacyNote = privacyNoteFor(options);
#if defined(__linux__)
    composition.soundSettings = {QStringLiteral("Sound Settings"),
                                 findSoundSettingsEntry().value_or(QString()).toStdString()};
#endif
#if defined(__APPLE__)
    // macOS: the native status item and window chrome wherever AppKit shows the windows (not on
    // the offscreen platform of headless runs), in the demo too; outside the demo the real
    // hardware, Music app, log and workspace.
    if (QGuiApplication::platformName() == QStringLiteral("cocoa")) {
        composition.windowChrome = MacWindowChrome::factory();
        composition.makeStatusItem = [] {
            return StatusItemChoice{std::make_unique<MacStatusItem>(), Seconds{0}};
        };
    }
    if (!options.demo) {
        composition.ports = makeMacPlatformPorts(executor, ports.settings, ports.timeOfDay);
        return composition;
    }
#endif
#if defined(__linux__)
    if (!options.demo) {
        // Outside the demo the meters show what the default sink plays, unless a file was asked
        // for.
        auto chosen = std::get<std::shared_ptr<ProcessTapHost>>(std::move(taps));
        if (options.audio == AudioSourceChoice::synthesizer)
            chosen = std::make_shared<PulseCaptureHost>();
        LinuxPlatformPorts native = makeLinuxPlatformPorts(executor, std::move(chosen));
        native.ports.settings = ports.settings;
        native.ports.workspace = ports.workspace;
        native.ports.timeOfDay = ports.timeOfDay;
        native.ports.loginItems = std::make_shared<XdgAutostart>(XdgAutostart::forCurrentUser());
        composition.ports = std::move(native.ports);
        composition.privacyNote = native.privacyNote;
        composition.notices.insert(composition.notices.end(), native.notices.begin(),
                                   native.notices.end());
        return composition;
    }
#endif

    // Demo mode: the simulated Mac.
    auto hardware = std::make_shared<SimAudioHardware>(executor);
    installDemoDac(*hardware);
    auto log = std::make_shared<SimSystemLog>([executor] { return executor->wallNow(); });
    auto music = std::make_shared<SimMusicApp>(executor);
    auto notifications = std::make_shared<SimPlayerNotifications>(executor);
    ports.audio = hardware;
    ports.taps = std::move(std::get<std::shared_ptr<ProcessTapHost>>(taps));
    ports.systemLog = log;
    ports.scripts = music;
    ports.notifications = notifications;
#if defined(__linux__)
    ports.loginItems = std::make_shared<XdgAutostart>(XdgAutostart::forCurrentUser());
#else
    ports.loginItems = std::make_shared<SimLoginItems>();
#endif
    composition.demo = DemoPlayer::create({executor, music, log, notifications},
                                          demoPlaylist(Seconds{demoTrackSeconds}));
    return composition;
}

}  // namespace corvanel
