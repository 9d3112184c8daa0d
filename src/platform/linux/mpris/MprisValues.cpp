#include "platform/linux/mpris/MprisValues.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QMetaType>
#include <cmath>

namespace corvanel::MprisValues {
namespace {

// The value inside a variant that Qt handed over still wrapped as a D-Bus variant.
QVariant unwrapped(const QVariant& value) {
    if (value.metaType() == QMetaType::fromType<QDBusVariant>())
        return value.value<QDBusVariant>().variant();
    return value;
}

bool isMarshalled(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<QDBusArgument>();
}

}  // namespace

QVariantMap dictionaryOf(const QVariant& wrapped) {
    const QVariant value = unwrapped(wrapped);
    if (value.metaType() == QMetaType::fromType<QVariantMap>()) return value.toMap();
    if (!isMarshalled(value)) return {};
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("a{sv}")) return {};
    return qdbus_cast<QVariantMap>(argument);
}

QStringList stringListOf(const QVariant& wrapped) {
    const QVariant value = unwrapped(wrapped);
    if (value.metaType() == QMetaType::fromType<QStringList>()) return value.toStringList();
    if (!isMarshalled(value)) return {};
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("as")) return {};
    return qdbus_cast<QStringList>(argument);
}

std::optional<std::string> textOf(const QVariant& wrapped) {
    const QVariant value = unwrapped(wrapped);
    if (value.metaType() == QMetaType::fromType<QString>()) return value.toString().toStdString();
    if (value.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return value.value<QDBusObjectPath>().path().toStdString();
    return std::nullopt;
}

std::optional<std::int64_t> integerOf(const QVariant& wrapped) {
    const QVariant value = unwrapped(wrapped);
    switch (value.metaType().id()) {
        case QMetaType::LongLong:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::UChar:
            return value.toLongLong();
        case QMetaType::ULongLong: {
            const qulonglong number = value.toULongLong();
            if (number > static_cast<qulonglong>(INT64_MAX)) return std::nullopt;
            return static_cast<std::int64_t>(number);
        }
        default:
            return std::nullopt;
    }
}

std::optional<double> numberOf(const QVariant& wrapped) {
    const QVariant value = unwrapped(wrapped);
    if (value.metaType().id() == QMetaType::Double) {
        const double number = value.toDouble();
        if (!std::isfinite(number)) return std::nullopt;
        return number;
    }
    if (const auto integer = integerOf(value)) return static_cast<double>(*integer);
    return std::nullopt;
}

std::optional<PlaybackStatus> playbackStatusOf(const QVariant& value) {
    const auto text = textOf(value);
    if (text == "Playing") return PlaybackStatus::playing;
    if (text == "Paused") return PlaybackStatus::paused;
    if (text == "Stopped") return PlaybackStatus::stopped;
    return std::nullopt;
}

TrackIdentity trackIdentityOf(const QVariantMap& metadata) {
    TrackIdentity track;
    track.trackId = textOf(metadata.value(QStringLiteral("mpris:trackid"))).value_or("");
    track.url = textOf(metadata.value(QStringLiteral("xesam:url"))).value_or("");
    return track;
}

bool isObjectPath(std::string_view text) {
    if (text.empty() || text.front() != '/') return false;
    if (text.size() == 1) return true;
    if (text.back() == '/') return false;
    char previous = '/';
    for (const char c : text.substr(1)) {
        const bool allowed = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                             (c >= '0' && c <= '9') || c == '_' || c == '/';
        if (!allowed || (c == '/' && previous == '/')) return false;
        previous = c;
    }
    return true;
}

}  // namespace corvanel::MprisValues
