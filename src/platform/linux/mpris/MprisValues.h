#pragma once
// Reading the values MPRIS players send: D-Bus variants as Qt delivers them (a nested
// dictionary arrives still marshalled, a variant may be wrapped once more), checked for their
// type, since a player may send anything.
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/mpris/MprisPlayer.h"

namespace corvanel::MprisValues {

// A dictionary of string to variant (a{sv}); empty for anything else.
QVariantMap dictionaryOf(const QVariant& value);
// A list of strings (as); empty for anything else.
QStringList stringListOf(const QVariant& value);
// A text (a string or an object path); nothing for anything else.
std::optional<std::string> textOf(const QVariant& value);
// A whole number of any integer type; nothing for anything else.
std::optional<std::int64_t> integerOf(const QVariant& value);
// A finite number of any numeric type; nothing for anything else.
std::optional<double> numberOf(const QVariant& value);

std::optional<PlaybackStatus> playbackStatusOf(const QVariant& value);
TrackIdentity trackIdentityOf(const QVariantMap& metadata);

// Whether `text` is a valid D-Bus object path (what SetPosition needs as a track id).
bool isObjectPath(std::string_view text);

}  // namespace corvanel::MprisValues
