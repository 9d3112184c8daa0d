#include "app/AppOptions.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <limits>

#include "CorvanelIdentity.h"
#include "switching/NumberText.h"

namespace corvanel {
namespace {

// The run ends on a timer counted in whole milliseconds in a signed 32-bit integer.
constexpr double shortestDuration = 0.001;
constexpr double longestDuration = std::numeric_limits<int>::max() / 1000.0;

std::optional<double> headlessDuration(const QString& text) {
    const std::optional<double> seconds = parseDecimal(text.toStdString());
    if (!seconds || *seconds < shortestDuration || *seconds > longestDuration) return std::nullopt;
    return seconds;
}

// Qt names the program in the usage line only once an application object exists, and the
// options are read before one does.
QString helpText(const QCommandLineParser& parser, const QStringList& arguments) {
    const QString program = QFileInfo(arguments.value(0, "corvanel")).fileName();
    const QString text = parser.helpText();
    return "Usage: " + program + " [options]" + text.mid(text.indexOf('\n'));
}

}  // namespace

// Finder may add a process serial number (-psn_…) to the first start of a downloaded
// application; Qt drops it, and so does this.
QStringList commandLineArguments(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (i == 0 || !argument.startsWith("-psn_")) arguments << argument;
    }
    return arguments;
}

std::variant<AppOptions, ProgramInformation, QString> parseOptions(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Keeps the output device at the playing track's sample rate and shows live meters.");
    // Our own help and version options, not Qt's: its --help-all lists Qt's own options
    // (-platform, -style), which are not read, as the options are read before the application
    // exists. Qt's environment variables (QT_QPA_PLATFORM, ...) do the same.
    const QCommandLineOption help({"h", "help"}, "Print these options and exit.");
    const QCommandLineOption version({"v", "version"}, "Print the version and exit.");
    const QCommandLineOption demo("demo", "Run with a simulated Music app and DAC.");
    const QCommandLineOption headless(
        "headless", "Run without windows for --duration seconds, printing the activity.");
    const QCommandLineOption duration("duration", "Seconds a headless run lasts (default 20).",
                                      "seconds", "20");
    const QCommandLineOption snapshots("snapshots", "Write PNG snapshots into this folder.",
                                       "folder");
    const QCommandLineOption audio("audio", "Play this audio file into the meters (demo).", "file");
    const QCommandLineOption capture(
        "capture", "Where the meters' audio comes from: synth (default) or pulse.", "source",
        "synth");
    const QCommandLineOption settings("settings", "Keep settings in this file.", "file");
    const QCommandLineOption open("open", "Open popup, panel or visualizer at start (repeatable).",
                                  "window");
    const QCommandLineOption printLevels(
        "print-levels", "With --headless: print what the meters see once a second, as JSON.");
    parser.addOptions({help, version, demo, headless, duration, snapshots, audio, capture, settings,
                       open, printLevels});
    if (!parser.parse(arguments)) return parser.errorText();
    if (parser.isSet(help)) return ProgramInformation{helpText(parser, arguments)};
    if (parser.isSet(version))
        return ProgramInformation{QStringLiteral("Corvanel %1\n").arg(projectVersion)};
    if (!parser.positionalArguments().isEmpty())
        return "Unknown argument: " + parser.positionalArguments().first();

    AppOptions options;
    options.demo = parser.isSet(demo);
    options.headless = parser.isSet(headless);
    options.printLevels = parser.isSet(printLevels);
    if (options.printLevels && !options.headless) return QString("--print-levels needs --headless");
    const std::optional<double> seconds = headlessDuration(parser.value(duration));
    if (!seconds)
        return "--duration needs a number of seconds from 0.001 to 2147483, not \"" +
               parser.value(duration) + "\"";
    options.durationSeconds = *seconds;
    if (parser.isSet(snapshots)) options.snapshotDirectory = parser.value(snapshots);
    if (parser.isSet(settings)) options.settingsFile = parser.value(settings);
    for (const QString& window : parser.values(open)) {
        if (window != "popup" && window != "panel" && window != "visualizer")
            return "--open takes popup, panel or visualizer, not \"" + window + "\"";
        options.openAtStart << window;
    }
    const QString source = parser.value(capture);
    if (source == "pulse") {
        options.audio = AudioSourceChoice::pulse;
    } else if (source != "synth") {
        return "--capture takes synth or pulse, not \"" + source + "\"";
    }
    if (parser.isSet(audio)) {
        if (options.audio == AudioSourceChoice::pulse)
            return "--audio and --capture pulse cannot be used together";
        options.audio = AudioSourceChoice::file;
        options.audioFile = parser.value(audio);
    }
    return options;
}

}  // namespace corvanel
