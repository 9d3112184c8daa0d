#include "app/Snapshots.h"

#include <QPainter>
#include <QPointer>
#include <QTimer>
#include <memory>

#include "app/AppWindow.h"
#include "app/ContentView.h"
#include "app/MenuBarLabel.h"
#include "app/MyApp.h"
#include "app/PanelMeterStyle.h"
#include "app/PanelView.h"
#include "app/PopupWindow.h"
#include "app/TrayStatusItem.h"

namespace corvanel {
namespace {

// Long enough for the meters' springs to reach the music after a style change.
constexpr int settleMilliseconds = 400;

struct SnapshotRun {
    MyApp& app;
    QDir directory;
    std::function<void(QStringList, QStringList)> done;
    QStringList written;
    QStringList problems;
    std::size_t nextStyle = 0;
    QString firstStyle;

    void save(const QImage& image, const QString& name) {
        const QString path = directory.filePath(name);
        if (image.isNull())
            problems << "Nothing to draw for " + name;
        else if (!image.save(path, "PNG"))
            problems << "Could not write " + path;
        else
            written << path;
    }
};

// The template label as a dark menu bar shows it: light on dark.
QImage labelOnMenuBar(const QImage& templateImage) {
    if (templateImage.isNull()) return {};
    const QSize margin(16, 8);
    QImage bar(templateImage.size() + margin * 2, QImage::Format_ARGB32_Premultiplied);
    bar.fill(QColor(0x1d, 0x1d, 0x22));
    QPainter painter(&bar);
    QImage tinted = tintedTemplate(templateImage, QColor(0xf2, 0xf2, 0xf7));
    tinted.setDevicePixelRatio(1);
    painter.drawImage(QPoint(margin.width(), margin.height()), tinted);
    painter.end();
    bar.setDevicePixelRatio(templateImage.devicePixelRatio());
    return bar;
}

void finish(const std::shared_ptr<SnapshotRun>& run) {
    run->done(run->written, run->problems);
}

void snapshotVisualizer(const std::shared_ptr<SnapshotRun>& run) {
    AppWindow* window = run->app.openWindow("visualizer");
    QTimer::singleShot(settleMilliseconds, [run, guard = QPointer<AppWindow>(window)] {
        if (guard) {
            run->save(guard->grab().toImage(), "visualizer.png");
            guard->close();
        }
        finish(run);
    });
}

void snapshotNextStyle(const std::shared_ptr<SnapshotRun>& run) {
    AppWindow* window = run->app.openWindow("panel");
    auto* panel = window ? qobject_cast<PanelView*>(window->content()) : nullptr;
    const auto& styles = PanelMeterStyle::allCases();
    if (!panel || run->nextStyle >= styles.size()) {
        if (panel) panel->chooseStyle(run->firstStyle);  // leave the user's choice as it was
        if (window) window->close();
        snapshotVisualizer(run);
        return;
    }
    if (run->nextStyle == 0) run->firstStyle = panel->meterStyle();
    const QString raw = QString::fromUtf8(styles[run->nextStyle].rawValue());
    panel->chooseStyle(raw);
    QTimer::singleShot(PanelView::resizeAnimationMilliseconds + settleMilliseconds,
                       [run, raw, guard = QPointer<AppWindow>(window)] {
                           if (guard) run->save(guard->grab().toImage(), "panel-" + raw + ".png");
                           ++run->nextStyle;
                           snapshotNextStyle(run);
                       });
}

}  // namespace

void writeSnapshots(MyApp& app, const QDir& directory,
                    std::function<void(QStringList written, QStringList problems)> done) {
    auto run =
        std::make_shared<SnapshotRun>(SnapshotRun{app, directory, std::move(done), {}, {}, 0, {}});
    if (!run->directory.mkpath(".")) {
        run->problems << "Could not create " + run->directory.path();
        finish(run);
        return;
    }
    run->save(labelOnMenuBar(app.label().image()), "label.png");
    app.popup().openBelow(app.statusItem().geometry());
    // The popup lays itself out on the next turns of the event loop.
    QTimer::singleShot(settleMilliseconds, [run] {
        run->save(run->app.popup().grab().toImage(), "popup.png");
        run->app.popup().hide();
        snapshotNextStyle(run);
    });
}

}  // namespace corvanel
