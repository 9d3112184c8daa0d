// Corvanel: keeps the output device at the playing track's sample rate and shows what the
// computer plays as live meters.
#include <QApplication>
#include <QStyleFactory>
#include <cstdio>
#include <optional>

#include "app/AppOptions.h"
#include "app/AppStyle.h"
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
    QApplication application(argc, argv);
    QApplication::setApplicationName("Corvanel");
    QApplication::setOrganizationName("Corvanel");
    // A menu-bar utility: closing its last window does not end it.
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(corvanel::style::darkPalette());

    auto parsed = corvanel::parseOptions(QApplication::arguments());
    if (auto* message = std::get_if<QString>(&parsed)) {
        std::fprintf(stderr, "%s\n", qPrintable(*message));
        return message->startsWith("Usage:") ? 0 : 2;
    }
    corvanel::AppOptions options = std::get<corvanel::AppOptions>(parsed);
    if (!corvanel::hasNativePlatform()) options.demo = true;

    auto composed = corvanel::composePlatform(
        options, {.quit = [] { QCoreApplication::quit(); },
                  .activate =
                      [] {
                          for (QWidget* window : QApplication::topLevelWidgets())
                              if (window->isVisible()) window->activateWindow();
                      }});
    if (auto* message = std::get_if<std::string>(&composed)) {
        std::fprintf(stderr, "%s\n", message->c_str());
        return 1;
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
        headless.emplace(app, options.durationSeconds, snapshots);
    }
    return QApplication::exec();
}
