#pragma once
// Reads the Music app's decoder messages from the system log and turns the newest usable one
// into a detection.
#include <optional>
#include <string_view>

#include "platform/Clock.h"
#include "platform/SystemLog.h"
#include "switching/RateDetection.h"

namespace corvanel::LogScanner {

// The process whose messages are read.
inline constexpr const char* musicProcess = "Music";

// What one message says: a detection from the first recognised shape that yields a plausible
// rate (the Music app's three decoder messages, then a track header journal's entry), or nothing.
std::optional<RateDetection> parse(std::string_view message, WallTime date);

// The newest usable Music message of the last `secondsBack` seconds (among equal time stamps the
// one enumerated last). Blocking; call it off the main thread.
ScanOutcome scanRecentLogs(SystemLog& log, double secondsBack);

}  // namespace corvanel::LogScanner
