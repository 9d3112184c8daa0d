#pragma once
// The activity log's time of day from the system locale: its medium time style (hours, minutes
// and seconds, no zone), so a US English user reads 3:04:05 PM and a Spanish one 15:04:05.
#include <QLocale>
#include <QString>
#include <string>

#include "platform/Clock.h"

namespace corvanel {

// The locale's medium time format. Qt offers only the short style (no seconds) and the long one
// (with a zone, whose removal leaves stray punctuation in some locales), so the seconds are
// added to the short style after its minutes, with the separator that stands between its hours
// and minutes; the day period is written in the locale's own case.
QString mediumTimeFormat(const QLocale& locale);
std::string qtTimeOfDay(const QLocale& locale, WallTime time);
// For PlatformPorts::timeOfDay: the system locale at the time of the call.
std::string systemTimeOfDay(WallTime time);

}  // namespace corvanel
