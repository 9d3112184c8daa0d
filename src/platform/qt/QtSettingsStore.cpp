#include "platform/qt/QtSettingsStore.h"

#include <QIODevice>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QVariant>
#include <cmath>
#include <limits>

namespace corvanel {
namespace {

// JSON keeps booleans, numbers and texts apart; anything else round-trips as JSON too.
bool readTypedFile(QIODevice& device, QSettings::SettingsMap& map) {
    const QByteArray bytes = device.readAll();
    if (bytes.trimmed().isEmpty()) return true;
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) return false;
    const QJsonObject object = document.object();
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QJsonValue value = it.value();
        if (value.isDouble()) {
            const double number = value.toDouble();
            const bool integral = std::trunc(number) == number &&
                                  std::abs(number) <= double(std::numeric_limits<qint64>::max());
            map.insert(it.key(), integral ? QVariant(qint64(number)) : QVariant(number));
        } else {
            map.insert(it.key(), value.toVariant());
        }
    }
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
                                            "Corvanel")) {}

QtSettingsStore::QtSettingsStore(const QString& filePath)
    : settings_(std::make_unique<QSettings>(filePath, typedSettingsFormat())) {}

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
