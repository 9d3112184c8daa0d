#pragma once
// The command line: demo mode and where its audio comes from, the headless run, a settings file.
#include <QString>
#include <QStringList>
#include <optional>
#include <variant>

namespace corvanel {

enum class AudioSourceChoice { synthesizer, file, pulse };

struct AppOptions {
    // Simulated Music app and DAC. Always on where there is no Music app to follow.
    bool demo = false;
    bool headless = false;
    // A headless run prints the meters' values once a second.
    bool printLevels = false;
    double durationSeconds = 20;
    std::optional<QString> snapshotDirectory;
    AudioSourceChoice audio = AudioSourceChoice::synthesizer;
    QString audioFile;
    // A typed settings file in place of the user's standard store.
    std::optional<QString> settingsFile;
    // Opened at start: "popup", "panel", "visualizer".
    QStringList openAtStart;
};

// What --help or --version asked to print; the program prints it and ends successfully.
struct ProgramInformation {
    QString text;
};

// main's arguments as Qt reads them, without an application object.
QStringList commandLineArguments(int argc, char* argv[]);

// The options, what --help or --version asked for, or the message saying what is wrong with the
// command line. Needs no application object, so it runs before the GUI exists.
std::variant<AppOptions, ProgramInformation, QString> parseOptions(const QStringList& arguments);

}  // namespace corvanel
