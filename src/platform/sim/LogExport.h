#pragma once
// Exported system logs (`log show --style ndjson`): one JSON object per line, of which the
// process ("processImagePath", last path component), the message ("eventMessage") and the time
// ("timestamp", e.g. "2024-05-01 21:14:03.123456+0200") are read.
#include <cstddef>
#include <functional>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/Clock.h"

namespace corvanel {

struct LogEntry {
    std::string process;
    std::string message;
    WallTime time;
};

// A line that could not be used, by its 1-based number.
struct LogExportProblem {
    std::size_t line = 0;
    std::string reason;
};

struct LogExport {
    std::vector<LogEntry> entries;  // in file order
    std::vector<LogExportProblem> problems;
};

// Where a streamed export goes, line by line, as it is read.
struct LogExportVisitor {
    std::function<void(LogEntry)> entry;
    std::function<void(LogExportProblem)> problem;
};

// A line longer than this is skipped as a problem without being held in memory.
inline constexpr std::size_t longestLogLine = 1 << 20;

// Reads every line and hands it on at once, so an export of any length (even an endless one)
// needs the memory of one line; malformed lines are skipped and reported. Blank lines and
// objects that are not log messages (no "eventMessage", such as the export's closing summary)
// are passed over.
void readLogExport(std::istream& input, const LogExportVisitor& visitor);
// The same, collected.
LogExport readLogExport(std::istream& input);

// Streams the file's export; a message saying why it could not be read (a FIFO waits for its
// writer first).
std::optional<std::string> streamLogExport(const std::string& path,
                                           const LogExportVisitor& visitor);
// The file's export, or a message saying why it could not be read.
std::variant<LogExport, std::string> loadLogExport(const std::string& path);

// "2024-05-01 21:14:03.123456+0200" (also with "T", "Z" or "+02:00", and without fraction or
// zone, which then reads as UTC); absent when it is not such a time, or not one of the years
// 1900 to 2199 (which every clock holds, with room for any scanned span before it).
std::optional<WallTime> parseLogTimestamp(std::string_view text);

}  // namespace corvanel
