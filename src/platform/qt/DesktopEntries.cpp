#include "platform/qt/DesktopEntries.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStandardPaths>
#include <QTextStream>
#include <array>

namespace corvanel {
namespace {

struct SoundSettingsEntry {
    const char* desktop;  // matched against XDG_CURRENT_DESKTOP; null for any desktop
    const char* file;
};

// Desktops' own panels first, then stand-alone volume controls, PipeWire's before PulseAudio's.
constexpr std::array soundSettingsEntries{
    SoundSettingsEntry{"GNOME", "gnome-sound-panel.desktop"},
    SoundSettingsEntry{"KDE", "kcm_pulseaudio.desktop"},
    SoundSettingsEntry{"LXQt", "pavucontrol-qt.desktop"},
    SoundSettingsEntry{nullptr, "com.saivert.pwvucontrol.desktop"},
    SoundSettingsEntry{nullptr, "org.pulseaudio.pavucontrol.desktop"},
    SoundSettingsEntry{nullptr, "pavucontrol.desktop"},
    SoundSettingsEntry{nullptr, "pavucontrol-qt.desktop"},
};

// The keys of the [Desktop Entry] group; other groups (actions) are skipped.
std::optional<QHash<QString, QString>> readEntryGroup(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return std::nullopt;
    QTextStream stream(&file);
    QHash<QString, QString> keys;
    bool inEntry = false;
    bool sawEntry = false;
    while (!stream.atEnd()) {
        const QString line = stream.readLine().trimmed();
        if (line.startsWith('[')) {
            inEntry = line == QStringLiteral("[Desktop Entry]");
            sawEntry = sawEntry || inEntry;
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!inEntry || line.startsWith('#') || equals <= 0) continue;
        const QString key = line.left(equals).trimmed();
        if (!keys.contains(key)) keys.insert(key, line.mid(equals + 1).trimmed());
    }
    if (!sawEntry) return std::nullopt;
    return keys;
}

// Splits an Exec value into words: double quotes group, a backslash escapes the next character,
// "%%" is a percent sign and every other field code goes.
QStringList execWords(const QString& exec) {
    QStringList words;
    QString word;
    bool quoted = false;
    bool hasWord = false;
    for (qsizetype index = 0; index < exec.size(); ++index) {
        const QChar character = exec[index];
        if (character == '\\' && index + 1 < exec.size()) {
            word += exec[++index];
            hasWord = true;
        } else if (character == '"') {
            quoted = !quoted;
            hasWord = true;
        } else if (character == '%' && index + 1 < exec.size()) {
            if (exec[++index] == '%') word += '%';
        } else if (character.isSpace() && !quoted) {
            if (hasWord && !word.isEmpty()) words.append(word);
            word.clear();
            hasWord = false;
        } else {
            word += character;
            hasWord = true;
        }
    }
    if (!word.isEmpty()) words.append(word);
    return words;
}

bool isInstalled(const QString& program) {
    if (program.isEmpty()) return false;
    if (QDir::isAbsolutePath(program)) return QFileInfo(program).isExecutable();
    return !QStandardPaths::findExecutable(program).isEmpty();
}

bool isTrue(const QString& value) {
    return value == QStringLiteral("true");
}

QStringList applicationFolders() {
    QStringList folders;
    for (const QString& folder :
         QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation))
        if (!folders.contains(folder)) folders.append(folder);
    return folders;
}

}  // namespace

std::optional<QStringList> desktopEntryCommand(const QString& path) {
    const auto keys = readEntryGroup(path);
    if (!keys || keys->value("Type") != QStringLiteral("Application") ||
        isTrue(keys->value("Hidden")))
        return std::nullopt;
    if (keys->contains("TryExec") && !isInstalled(keys->value("TryExec"))) return std::nullopt;
    const QStringList command = execWords(keys->value("Exec"));
    if (command.isEmpty() || !isInstalled(command.front())) return std::nullopt;
    return command;
}

std::optional<QString> findSoundSettingsEntry() {
    const QStringList desktops =
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':', Qt::SkipEmptyParts);
    const QStringList folders = applicationFolders();
    for (const bool ownDesktop : {true, false}) {
        for (const SoundSettingsEntry& entry : soundSettingsEntries) {
            const bool forThisDesktop =
                entry.desktop != nullptr &&
                desktops.contains(QString::fromLatin1(entry.desktop), Qt::CaseInsensitive);
            if (ownDesktop != forThisDesktop || (!ownDesktop && entry.desktop != nullptr)) continue;
            // The first folder that has the entry decides: a user's own copy overrides (or
            // hides) the system's.
            for (const QString& folder : folders) {
                const QString path = QDir(folder).filePath(QString::fromLatin1(entry.file));
                if (!QFileInfo::exists(path)) continue;
                if (desktopEntryCommand(path)) return path;
                break;
            }
        }
    }
    return std::nullopt;
}

}  // namespace corvanel
