#include "app/HeadlessRun.h"

#include <QCoreApplication>
#include <QTimer>
#include <cstdio>

#include "app/ActivityPrinter.h"
#include "app/LevelPrinter.h"
#include "app/MyApp.h"
#include "app/Snapshots.h"
#include "spectrum/SpectrumAnalyzer.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {

HeadlessRun::HeadlessRun(MyApp& app, double durationSeconds, std::optional<QDir> snapshots,
                         bool printLevels)
    : app_(app),
      snapshots_(std::move(snapshots)),
      printer_(std::make_unique<ActivityPrinter>(app.environment().engine, stdout)) {
    if (printLevels)
        levels_ = std::make_unique<LevelPrinter>(app.environment().engine->spectrum(), stdout);
    captureChanged_ = app.environment().engine->spectrum()->stateChanged.connect(
        [this] { printCaptureMessage(); });
    printCaptureMessage();
    QTimer::singleShot(int(durationSeconds * 1000), [this] { finish(); });
}

void HeadlessRun::printCaptureMessage() {
    // Capture problems are shown in the popup; without one they go to the error stream.
    const auto& message = app_.environment().engine->spectrum()->statusMessage();
    if (message == shownCaptureMessage_) return;
    shownCaptureMessage_ = message;
    if (message) std::fprintf(stderr, "%s\n", message->c_str());
}

HeadlessRun::~HeadlessRun() = default;

void HeadlessRun::finish() {
    if (!snapshots_) {
        QCoreApplication::quit();
        return;
    }
    writeSnapshots(app_, *snapshots_, [](const QStringList& written, const QStringList& problems) {
        for (const QString& path : written)
            std::printf("Snapshot: %s\n", qPrintable(path));
        for (const QString& problem : problems)
            std::fprintf(stderr, "%s\n", qPrintable(problem));
        std::fflush(stdout);
        QCoreApplication::exit(problems.isEmpty() ? 0 : 1);
    });
}

}  // namespace corvanel
