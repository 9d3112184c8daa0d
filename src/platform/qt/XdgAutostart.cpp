#include "platform/qt/XdgAutostart.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include "CorvanelIdentity.h"

namespace corvanel {
namespace {

QString quotedArgument(QString argument) {
    argument.replace("\\", "\\\\").replace("\"", "\\\"");
    return "\"" + argument + "\"";
}

// The Exec line of a desktop entry's main group, or nothing.
std::optional<QString> execLine(const QString& desktopEntryPath) {
    if (desktopEntryPath.isEmpty()) return std::nullopt;  // not installed
    QFile entry(desktopEntryPath);
    if (!entry.open(QIODevice::ReadOnly | QIODevice::Text)) return std::nullopt;
    bool inMainGroup = false;
    while (!entry.atEnd()) {
        const QString line = QString::fromUtf8(entry.readLine()).trimmed();
        if (line.startsWith('['))
            inMainGroup = line == "[Desktop Entry]";
        else if (inMainGroup && line.startsWith("Exec="))
            return line.mid(5);
    }
    return std::nullopt;
}

// The program an Exec line starts (its first argument, quoted or not), found the way the
// desktop finds it: a path as written, a bare name on PATH.
QString programOf(const QString& exec) {
    QString program;
    if (exec.startsWith('"')) {
        for (qsizetype i = 1; i < exec.size() && exec[i] != '"'; ++i) {
            if (exec[i] == '\\' && i + 1 < exec.size()) ++i;
            program += exec[i];
        }
    } else {
        program = exec.section(' ', 0, 0);
    }
    if (program.contains('/')) return program;
    return QStandardPaths::findExecutable(program);
}

bool sameFile(const QString& a, const QString& b) {
    const QString canonical = QFileInfo(a).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(b).canonicalFilePath();
}

}  // namespace

XdgAutostart::XdgAutostart(QString entryPath, Launcher launcher)
    : entryPath_(std::move(entryPath)), launcher_(std::move(launcher)) {}

XdgAutostart XdgAutostart::forCurrentUser() {
    const QString config = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation);
    const QString desktopEntry = QString(applicationId) + ".desktop";
    return XdgAutostart(
        config + "/autostart/" + desktopEntry,
        launcherFor(QCoreApplication::applicationFilePath(),
                    QStandardPaths::locate(QStandardPaths::ApplicationsLocation, desktopEntry)));
}

XdgAutostart::Launcher XdgAutostart::launcherFor(const QString& runningProgram,
                                                 const QString& desktopEntryPath) {
    if (const auto exec = execLine(desktopEntryPath)) {
        const QString program = programOf(*exec);
        if (sameFile(program, runningProgram)) return {*exec, program};
    }
    return {quotedArgument(runningProgram), runningProgram};
}

LoginItemStatus XdgAutostart::status() {
    QFile entry(entryPath_);
    if (!entry.open(QIODevice::ReadOnly)) return LoginItemStatus::notRegistered;
    // A desktop may switch an entry off in place rather than delete it.
    const QByteArray text = entry.readAll();
    if (text.contains("\nHidden=true") || text.contains("\nX-GNOME-Autostart-enabled=false"))
        return LoginItemStatus::notRegistered;
    return LoginItemStatus::enabled;
}

QByteArray XdgAutostart::entryText() const {
    return QStringLiteral(
               "[Desktop Entry]\nType=Application\nName=Corvanel\n"
               "Comment=Follows the playing track's sample rate\n"
               "Exec=%1\nTryExec=%2\nTerminal=false\nX-GNOME-Autostart-enabled=true\n")
        .arg(launcher_.exec, launcher_.program)
        .toUtf8();
}

std::optional<std::string> XdgAutostart::registerApp() {
    if (!QDir().mkpath(QFileInfo(entryPath_).absolutePath()))
        return "Could not create the folder of " + entryPath_.toStdString();
    QSaveFile entry(entryPath_);
    if (!entry.open(QIODevice::WriteOnly)) return entry.errorString().toStdString();
    entry.write(entryText());
    if (!entry.commit()) return entry.errorString().toStdString();
    return std::nullopt;
}

std::optional<std::string> XdgAutostart::unregisterApp() {
    QFile entry(entryPath_);
    if (!entry.exists() || entry.remove()) return std::nullopt;
    return entry.errorString().toStdString();
}

std::optional<std::string> XdgAutostart::refresh() {
    if (status() != LoginItemStatus::enabled) return std::nullopt;
    QFile entry(entryPath_);
    if (entry.open(QIODevice::ReadOnly) && entry.readAll() == entryText()) return std::nullopt;
    return registerApp();
}

}  // namespace corvanel
