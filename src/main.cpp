// Corvanel: keeps the output device at the playing track's sample rate and shows what the
// computer plays as live meters.
#include <QApplication>
#include <QStyleFactory>
#include <cstdio>
#include <memory>
#include <optional>

#include "CorvanelIdentity.h"

#include "app/AppOptions.h"
#include "app/AppStyle.h"
#include "app/DesktopPalette.h"
#include "app/HeadlessRun.h"
#include "app/MyApp.h"
#include "app/PlatformComposition.h"
#include "app/PopupWindow.h"

namespace {

// The offscreen platform of a headless run warns about every window operation it lacks.
void quietOffscreenMessages(QtMsgType type, const QMessageLogContext& context,
                            const QString& message) {
    if (message.startsWith("This plugin does not support")) return;
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
}

}  // namespace

int main(int argc, char* argv[]) {
    // Read before the GUI application exists: --help, --version and mistakes need no display.
    auto parsed = corvanel::parseOptions(corvanel::commandLineArguments(argc, argv));
    if (auto* information = std::get_if<corvanel::ProgramInformation>(&parsed)) {
        std::fputs(qPrintable(information->text), stdout);
        return 0;
    }
    if (auto* message = std::get_if<QString>(&parsed)) {
        std::fprintf(stderr, "%s\n", qPrintable(*message));
        return 2;
    }
    corvanel::AppOptions options = std::get<corvanel::AppOptions>(parsed);
    // A headless run draws only into images, so it never needs (or touches) a display.
    if (options.headless) qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication application(argc, argv);
    QApplication::setApplicationName("Corvanel");
    QApplication::setOrganizationName("Corvanel");
    // Lets Wayland compositors match the windows to the installed desktop entry and its icon.
    QGuiApplication::setDesktopFileName(corvanel::applicationId);
    // A menu-bar utility: closing its last window does not end it.
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    // The shell's windows are dark; the tray icon keeps to the desktop's own colours.
    auto desktopPalette =
        std::make_shared<corvanel::DesktopPalette>(corvanel::style::darkPalette());
    if (!corvanel::hasNativePlatform()) options.demo = true;

    auto composed =
        corvanel::composePlatform(options,
                                  {.quit = [] { QCoreApplication::quit(); },
                                   .activate =
                                       [] {
                                           for (QWidget* window : QApplication::topLevelWidgets())
                                               if (window->isVisible()) window->activateWindow();
                                       }},
                                  desktopPalette);
    if (auto* message = std::get_if<std::string>(&composed)) {
        std::fprintf(stderr, "%s\n", message->c_str());
        return 1;
    }
    // A headless run is a diagnostic, not the user's copy: it leaves the login item alone.
    if (!options.headless) {
        if (const auto failure = corvanel::refreshLoginItem())
            std::fprintf(stderr, "Could not update the login item: %s\n", failure->c_str());
    }
    corvanel::MyApp app(std::move(std::get<corvanel::Composition>(composed)));
    app.start();
    for (const QString& window : options.openAtStart) {
        if (window == "popup")
            app.popup().openBelow(app.statusItem().geometry());
        else
            app.openWindow(window);
    }

    std::optional<corvanel::HeadlessRun> headless;
    if (options.headless) {
        qInstallMessageHandler(quietOffscreenMessages);
        std::optional<QDir> snapshots;
        if (options.snapshotDirectory) snapshots = QDir(*options.snapshotDirectory);
        headless.emplace(app, options.durationSeconds, snapshots, options.printLevels);
    }
    return QApplication::exec();
}
