#include "platform/qt/QtTimeOfDay.h"

#include <QDateTime>

namespace corvanel {

QString timeFormatWithoutZone(const QLocale& locale) {
    const QString format = locale.timeFormat(QLocale::LongFormat);
    QString result;
    bool quoted = false;
    for (const QChar character : format) {
        if (character == u'\'') quoted = !quoted;
        if (!quoted && character == u't') continue;
        result.append(character);
    }
    return result.simplified();
}

std::string qtTimeOfDay(const QLocale& locale, WallTime time) {
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const QTime local = QDateTime::fromMSecsSinceEpoch(milliseconds).toLocalTime().time();
    return locale.toString(local, timeFormatWithoutZone(locale)).toStdString();
}

std::string systemTimeOfDay(WallTime time) {
    return qtTimeOfDay(QLocale::system(), time);
}

}  // namespace corvanel
