#pragma once
// A settings file that no longer parses (a trailing comma typed by hand, a write cut short) is
// the user's only copy of their choices: it is kept under a new name instead of being replaced,
// and every member that still reads is carried over into the fresh file.
#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <optional>

namespace corvanel {

// The members of a damaged JSON object that still parse: the longest prefix of whole members,
// closed where the damage starts. Empty when the text is not an object at all.
QJsonObject readableMembers(const QByteArray& text);

// Renames `path` to "<path>.unreadable-<yyyyMMdd-HHmmss>" in the same folder (with a counter if
// that name is taken) and returns the new file name; absent when the file could not be renamed.
std::optional<QString> keepUnreadableFile(const QString& path, const QDateTime& now);

// The activity line that tells the user once what happened to their settings.
std::string unreadableSettingsNotice(const std::optional<QString>& keptAs, qsizetype recovered);

}  // namespace corvanel
