// corvanel-tool render: draws one still frame of a meter style, or the menu-bar label, into a
// PNG without a window.
#include <QGuiApplication>
#include <QImage>
#include <QString>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "RenderOptions.h"
#include "ToolCommand.h"
#include "app/CandlelightSnapshot.h"
#include "app/CandlelightView.h"
#include "app/MeterSnapshot.h"
#include "meters/SpectrumBarsView.h"

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

int save(const QImage& image, const std::string& path) {
    if (image.isNull()) {
        std::fprintf(stderr, "corvanel-tool render: nothing was rendered for %s\n", path.c_str());
        return 1;
    }
    if (!image.save(QString::fromStdString(path), "PNG")) {
        std::fprintf(stderr, "corvanel-tool render: could not write %s\n", path.c_str());
        return 1;
    }
    std::printf("%s\n", path.c_str());
    return 0;
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
    if (options.output.empty()) {
        std::fprintf(stderr, "corvanel-tool render: -o FILE.png is required\n");
        return 2;
    }
    const std::unique_ptr<QGuiApplication> application = makeApplication();
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
