#include "platform/qt/UnreadableSettingsFile.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <vector>

namespace corvanel {
namespace {

// A settings file holds a handful of members; a longer run of separators is not worth retrying.
constexpr std::size_t maximumAttempts = 64;

std::optional<QJsonObject> parsedObject(const QByteArray& text) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) return std::nullopt;
    return document.object();
}

// Where a prefix of `text` may end as a whole object: after each member of the outer object,
// and where the outer object closes.
std::vector<QByteArray> closedPrefixes(const QByteArray& text) {
    std::vector<QByteArray> prefixes{text + '}'};
    int depth = 0;
    bool inString = false;
    bool escaped = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (escaped)
                escaped = false;
            else if (c == '\\')
                escaped = true;
            else if (c == '"')
                inString = false;
            continue;
        }
        if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            ++depth;
        } else if (c == '}' || c == ']') {
            if (--depth == 0) {
                prefixes.push_back(text.left(i + 1));
                break;
            }
        } else if (c == ',' && depth == 1) {
            prefixes.push_back(text.left(i) + '}');
        }
    }
    return prefixes;
}

}  // namespace

QJsonObject readableMembers(const QByteArray& text) {
    if (!text.trimmed().startsWith('{')) return {};
    const std::vector<QByteArray> prefixes = closedPrefixes(text);
    // The first candidate closes the whole text; the others from the longest down.
    if (auto whole = parsedObject(prefixes.front())) return *whole;
    std::size_t attempts = 0;
    for (auto it = prefixes.rbegin(); it != prefixes.rend() - 1; ++it) {
        if (++attempts > maximumAttempts) break;
        if (auto object = parsedObject(*it)) return *object;
    }
    return {};
}

std::optional<QString> keepUnreadableFile(const QString& path, const QDateTime& now) {
    const QString stem = path + ".unreadable-" + now.toString("yyyyMMdd-HHmmss");
    for (int copy = 1; copy <= 100; ++copy) {
        const QString target = copy == 1 ? stem : stem + '-' + QString::number(copy);
        if (QFileInfo::exists(target)) continue;
        // rename() never replaces an existing file.
        if (QFile::rename(path, target)) return QFileInfo(target).fileName();
        return std::nullopt;
    }
    return std::nullopt;
}

std::string unreadableSettingsNotice(const std::optional<QString>& keptAs, qsizetype recovered) {
    if (!keptAs)
        return "Settings file could not be read or set aside — it is left as it is and changes "
               "will not be saved";
    return "Settings file could not be read — kept as " + keptAs->toStdString() + ", " +
           std::to_string(recovered) + (recovered == 1 ? " setting" : " settings") + " recovered";
}

}  // namespace corvanel
