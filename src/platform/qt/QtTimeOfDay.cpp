#include "platform/qt/QtTimeOfDay.h"

#include <QDateTime>

namespace corvanel {
namespace {

bool isHourField(QChar letter) {
    return letter == u'h' || letter == u'H';
}

// Whether a format shows seconds already (outside quoted text), as the C locale's short one does.
bool showsSeconds(const QString& format) {
    bool quoted = false;
    for (const QChar letter : format) {
        if (letter == u'\'') quoted = !quoted;
        if (!quoted && letter == u's') return true;
    }
    return false;
}

}  // namespace

QString mediumTimeFormat(const QLocale& locale) {
    const QString format = locale.timeFormat(QLocale::ShortFormat);
    if (showsSeconds(format)) return format;
    QString result;
    QString separator = QStringLiteral(":");
    qsizetype hourEnd = -1;  // where the text after the last hour field starts in `result`
    bool quoted = false;
    bool secondsAdded = false;
    for (qsizetype index = 0; index < format.size();) {
        const QChar letter = format[index];
        if (letter == u'\'') quoted = !quoted;
        if (quoted || letter == u'\'' || !letter.isLetter()) {
            result.append(letter);
            ++index;
            continue;
        }
        qsizetype run = 1;
        while (index + run < format.size() && format[index + run] == letter)
            ++run;
        const bool upperDayPeriod =
            letter == u'A' && run == 1 && index + 1 < format.size() && format[index + 1] == u'P';
        if (upperDayPeriod || letter == u'B') {
            // "AP" upper-cases the day period ("E PASDITES"), and Qt prints the flexible one, "B",
            // as a letter: "Ap" is the day period in the locale's own case.
            result.append(QStringLiteral("Ap"));
            index += upperDayPeriod ? 2 : run;
            continue;
        }
        if (letter == u'm' && !secondsAdded) {
            if (hourEnd >= 0) separator = result.mid(hourEnd);
            result.append(QString(run, letter));
            result.append(separator + QString(run, u's'));
            secondsAdded = true;
        } else {
            result.append(QString(run, letter));
        }
        if (isHourField(letter)) hourEnd = result.size();
        index += run;
    }
    return result;
}

std::string qtTimeOfDay(const QLocale& locale, WallTime time) {
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const QTime local = QDateTime::fromMSecsSinceEpoch(milliseconds).toLocalTime().time();
    return locale.toString(local, mediumTimeFormat(locale)).toStdString();
}

std::string systemTimeOfDay(WallTime time) {
    return qtTimeOfDay(QLocale::system(), time);
}

}  // namespace corvanel
