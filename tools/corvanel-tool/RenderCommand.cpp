// corvanel-tool render: draws one still frame of a meter style, or the menu-bar label, into a
// PNG without a window.
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QString>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "AudioMeterValues.h"
#include "RenderOptions.h"
#include "ToolCommand.h"
#include "app/CandlelightSnapshot.h"
#include "app/CandlelightView.h"
#include "app/MeterSnapshot.h"
#include "app/PanelMeterStyle.h"
#include "app/TrayIcon.h"
#include "meters/styles/SpectrumBarsView.h"

namespace corvanel::tool {

namespace {

// Rendering needs no screen; without one, Qt is pointed at its offscreen platform.
std::unique_ptr<QGuiApplication> makeApplication() {
    const bool hasDisplay =
        std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
#ifndef Q_OS_MACOS
    if (!hasDisplay && std::getenv("QT_QPA_PLATFORM") == nullptr)
        qputenv("QT_QPA_PLATFORM", "offscreen");
#else
    (void)hasDisplay;
#endif
    static int argc = 1;
    static char name[] = "corvanel-tool";
    static char* argv[] = {name, nullptr};
    return std::make_unique<QGuiApplication>(argc, argv);
}

// The image is encoded in memory and written in one go, so that a write the disk refuses (a
// full disk) is seen as a failure; a file left incomplete is removed.
int save(const QImage& image, const std::string& path) {
    if (image.isNull()) {
        std::fprintf(stderr, "corvanel-tool render: nothing was rendered for %s\n", path.c_str());
        return 1;
    }
    QByteArray encoded;
    QBuffer buffer(&encoded);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG")) {
        std::fprintf(stderr, "corvanel-tool render: could not encode the image for %s\n",
                     path.c_str());
        return 1;
    }
    QFile file(QString::fromStdString(path));
    const bool written = file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
                         file.write(encoded) == encoded.size() && file.flush();
    const QString reason = file.errorString();
    file.close();
    if (!written || file.error() != QFileDevice::NoError) {
        std::fprintf(stderr, "corvanel-tool render: could not write %s: %s\n", path.c_str(),
                     qPrintable(written ? file.errorString() : reason));
        if (QFileInfo(file).isFile()) file.remove();
        return 1;
    }
    std::printf("%s\n", path.c_str());
    return 0;
}

// The area the panel gives its meter in each height group (the window less its header rows and
// margins), so the gallery shows the styles in their own proportions.
// Seconds since 2001-01-01 UTC of the gallery's visualizer frame.
constexpr double galleryVisualizerTime = 785'000'000.25;

QSizeF galleryArea(PanelMeterStyle style) {
    return style.heightGroup() == PanelHeightGroup::tall ? QSizeF(460, 450) : QSizeF(460, 190);
}

// The largest picture of the gallery, the visualizer's window.
const QSizeF galleryLargestArea(960, 600);

// The tray icon in a light and in a dark theme's colours, each at one and at two pixels per
// point: above on its own theme's panel, below on the other one (a dark top bar under a light
// theme), where the halo of the theme's window colour carries the digits.
QImage trayIconOnPanels(const std::vector<float>& levels) {
    struct Desktop {
        QColor panel;
        TrayIconColours colours;
    };
    const Desktop desktops[] = {
        {QColor(0xf4, 0xf4, 0xf4), {QColor(0x20, 0x20, 0x24), QColor(0xf6, 0xf5, 0xf4)}},
        {QColor(0x1e, 0x1e, 0x22), {QColor(0xee, 0xee, 0xee), QColor(0x2a, 0x2a, 0x2e)}}};
    constexpr int padding = 12;
    constexpr int side = trayIconPoints * 2;
    const QSize panelSize(padding * 3 + trayIconPoints + side, padding * 2 + side);
    QImage picture(panelSize * 2, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&picture);
    for (int theme = 0; theme < 2; ++theme) {
        QImage sharp = trayIconImage(QString::fromUtf8("96 kHz \u00b7 24-bit"), levels,
                                     desktops[theme].colours, 2.0);
        const QImage single = trayIconAtOnePixelPerPoint(sharp);
        sharp.setDevicePixelRatio(1.0);
        for (int row = 0; row < 2; ++row) {
            const QPoint origin(theme * panelSize.width(), row * panelSize.height());
            painter.fillRect(QRect(origin, panelSize),
                             desktops[row == 0 ? theme : 1 - theme].panel);
            painter.drawImage(origin + QPoint(padding, padding + (side - trayIconPoints) / 2),
                              single);
            painter.drawImage(origin + QPoint(padding * 2 + trayIconPoints, padding), sharp);
        }
    }
    painter.end();
    return picture;
}

int renderGallery(const std::string& directory, double scale) {
    if (const auto problem = imageSizeProblem(galleryLargestArea.width() * scale,
                                              galleryLargestArea.height() * scale)) {
        std::fprintf(stderr, "corvanel-tool render: %s\n", problem->c_str());
        return 2;
    }
    if (!QDir().mkpath(QString::fromStdString(directory))) {
        std::fprintf(stderr, "corvanel-tool render: could not create %s\n", directory.c_str());
        return 1;
    }
    const meters::MeterValues values = galleryMeterValues();
    int failures = 0;
    for (const PanelMeterStyle style : PanelMeterStyle::allCases()) {
        const std::string path = directory + "/" + std::string(style.rawValue()) + ".png";
        failures +=
            save(renderMeterSnapshot(style.rawValue(), values, galleryArea(style), scale), path);
    }
    failures +=
        save(meters::SpectrumBarsView::menuBarImage(QStringLiteral("44.1 kHz"), values.levels),
             directory + "/label.png");
    failures += save(trayIconOnPanels(values.levels), directory + "/tray.png");
    // The visualizer at its window's size, at a fixed moment so the picture is reproducible.
    failures += save(
        renderCandlelightSnapshot(values.levels, galleryVisualizerTime, galleryLargestArea, scale),
        directory + "/candlelight.png");
    return failures == 0 ? 0 : 1;
}

int run(const std::vector<std::string>& arguments) {
    // --visualizer is the one option without a value: it draws the visualizer, not a style.
    std::vector<std::string> valued;
    bool visualizer = false;
    for (const std::string& argument : arguments) {
        if (argument == "--visualizer")
            visualizer = true;
        else
            valued.push_back(argument);
    }
    RenderOptions options;
    if (const std::optional<std::string> error = parseRenderOptions(valued, options)) {
        std::fprintf(stderr, "corvanel-tool render: %s\n", error->c_str());
        return 2;
    }
    if (options.output.empty() && !options.gallery) {
        std::fprintf(stderr, "corvanel-tool render: -o FILE.png (or --gallery DIR) is required\n");
        return 2;
    }
    if (options.audio) {
        auto values = meterValuesFromFile(*options.audio, options.at);
        if (const auto* error = std::get_if<std::string>(&values)) {
            std::fprintf(stderr, "corvanel-tool render: %s\n", error->c_str());
            return 1;
        }
        options.values = std::move(std::get<meters::MeterValues>(values));
    }
    const std::unique_ptr<QGuiApplication> application = makeApplication();
    if (options.gallery) return renderGallery(*options.gallery, options.scale);
    if (options.label) {
        const std::optional<std::vector<float>> levels =
            options.values.levels.empty() ? std::nullopt : std::optional(options.values.levels);
        return save(
            meters::SpectrumBarsView::menuBarImage(QString::fromStdString(*options.label), levels),
            options.output);
    }
    if (visualizer)
        return save(
            renderCandlelightSnapshot(options.values.levels,
                                      options.time.value_or(CandlelightView::secondsSince2001()),
                                      {options.width, options.height}, options.scale),
            options.output);
    return save(renderMeterSnapshot(options.style, options.values, {options.width, options.height},
                                    options.scale),
                options.output);
}

const RegisterCommand registration{{
    "render",
    "--style RAW --size WxH [--scale N] [--levels v,... --peaks v,... --left L --right R] "
    "[--label TITLE] [--visualizer [--time T]] -o FILE.png",
    run,
}};

}  // namespace

}  // namespace corvanel::tool
