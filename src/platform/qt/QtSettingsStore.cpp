#include "platform/qt/QtSettingsStore.h"

#include <QDateTime>
#include <QFile>
#include <QIODevice>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QVariant>
#include <cmath>

#include "platform/qt/UnreadableSettingsFile.h"

namespace corvanel {
namespace {

// JSON keeps booleans, numbers and texts apart; anything else round-trips as JSON too.
QVariant typedValue(const QJsonValue& value) {
    if (!value.isDouble()) return value.toVariant();
    const double number = value.toDouble();
    // Whole numbers within 64 bits read as integers. 2^63 itself is not one of them: it is one
    // past the largest, and converting it would be undefined.
    constexpr double twoToThe63 = 9223372036854775808.0;
    const bool integral =
        std::trunc(number) == number && number >= -twoToThe63 && number < twoToThe63;
    return integral ? QVariant(qint64(number)) : QVariant(number);
}

bool readTypedFile(QIODevice& device, QSettings::SettingsMap& map) {
    const QByteArray bytes = device.readAll();
    if (bytes.trimmed().isEmpty()) return true;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) return false;
    const QJsonObject object = document.object();
    for (auto it = object.begin(); it != object.end(); ++it)
        map.insert(it.key(), typedValue(it.value()));
    return true;
}

bool writeTypedFile(QIODevice& device, const QSettings::SettingsMap& map) {
    QJsonObject object;
    for (auto it = map.begin(); it != map.end(); ++it)
        object.insert(it.key(), QJsonValue::fromVariant(it.value()));
    return device.write(QJsonDocument(object).toJson(QJsonDocument::Indented)) >= 0;
}

QSettings::Format storeFormat() {
#if defined(Q_OS_MACOS)
    return QSettings::NativeFormat;
#else
    return typedSettingsFormat();
#endif
}

}  // namespace

QSettings::Format typedSettingsFormat() {
    static const QSettings::Format format =
        QSettings::registerFormat("json", readTypedFile, writeTypedFile);
    return format;
}

QtSettingsStore::QtSettingsStore()
    : settings_(std::make_unique<QSettings>(storeFormat(), QSettings::UserScope, "Corvanel",
                                            "Corvanel")) {
    if (storeFormat() == typedSettingsFormat()) keepAnUnreadableFile();
}

QtSettingsStore::QtSettingsStore(const QString& filePath)
    : settings_(std::make_unique<QSettings>(filePath, typedSettingsFormat())) {
    keepAnUnreadableFile();
}

void QtSettingsStore::keepAnUnreadableFile() {
    // QSettings would replace a file it cannot parse with the values it holds on the first write.
    if (settings_->status() != QSettings::FormatError) return;
    const QString path = settings_->fileName();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return;
    const QByteArray text = file.readAll();
    file.close();
    const std::optional<QString> keptAs = keepUnreadableFile(path, QDateTime::currentDateTime());
    // Another copy starting at the same moment may have set it aside already.
    if (!keptAs && !QFile::exists(path)) return;
    writable_ = keptAs.has_value();
    const QJsonObject recovered = keptAs ? readableMembers(text) : QJsonObject{};
    for (auto it = recovered.begin(); it != recovered.end(); ++it)
        settings_->setValue(it.key(), typedValue(it.value()));
    if (!recovered.isEmpty()) settings_->sync();
    startupNotice_ = unreadableSettingsNotice(keptAs, recovered.size());
}

SettingValue QtSettingsStore::read(const std::string& key) const {
    const QVariant value = settings_->value(QString::fromStdString(key));
    if (!value.isValid()) return std::monostate{};
    switch (value.typeId()) {
        case QMetaType::Bool:
            return value.toBool();
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::UInt:
            return std::int64_t{value.toLongLong()};
        case QMetaType::QString:
            return value.toString().toStdString();
        default:
            return OtherSettingValue{};
    }
}

void QtSettingsStore::write(const std::string& key, const StoredSettingValue& value) {
    if (!writable_) return;
    const QString name = QString::fromStdString(key);
    std::visit(
        [&](const auto& stored) {
            using T = std::decay_t<decltype(stored)>;
            if constexpr (std::is_same_v<T, std::string>)
                settings_->setValue(name, QString::fromStdString(stored));
            else if constexpr (std::is_same_v<T, bool>)
                settings_->setValue(name, stored);
            else
                settings_->setValue(name, qint64{stored});
        },
        value);
    // Written on every change: a crash or a second copy must not lose or miss it.
    settings_->sync();
}

}  // namespace corvanel
