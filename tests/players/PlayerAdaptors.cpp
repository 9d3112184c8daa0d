#include "PlayerAdaptors.h"

RootAdaptor::RootAdaptor(TestPlayer* player) : QDBusAbstractAdaptor(player), player_(player) {}

QStringList RootAdaptor::mimeTypes() const {
    return {QStringLiteral("audio/flac"), QStringLiteral("audio/x-wav"),
            QStringLiteral("audio/mpeg"), QStringLiteral("audio/ogg")};
}

PlayerAdaptor::PlayerAdaptor(TestPlayer* player) : QDBusAbstractAdaptor(player), player_(player) {
    connect(player, &TestPlayer::seeked, this, &PlayerAdaptor::Seeked);
}
