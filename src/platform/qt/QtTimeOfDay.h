#pragma once
// The activity log's time of day from the system locale: its long time style (hours, minutes
// and seconds) without the time zone, so a US English user reads 3:04:05 PM.
#include <QLocale>
#include <QString>
#include <string>

#include "platform/Clock.h"

namespace corvanel {

// The locale's long time format with its time-zone fields removed.
QString timeFormatWithoutZone(const QLocale& locale);
std::string qtTimeOfDay(const QLocale& locale, WallTime time);
// For PlatformPorts::timeOfDay: the system locale at the time of the call.
std::string systemTimeOfDay(WallTime time);

}  // namespace corvanel
