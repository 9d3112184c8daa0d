#pragma once
// Exported system logs (`log show --style ndjson`): one JSON object per line, of which the
// process ("processImagePath", last path component), the message ("eventMessage") and the time
// ("timestamp", e.g. "2024-05-01 21:14:03.123456+0200") are read.
#include <cstddef>
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

// Reads every line; malformed ones are skipped and reported. Blank lines and objects that are
// not log messages (no "eventMessage", such as the export's closing summary) are passed over.
LogExport readLogExport(std::istream& input);

// The file's export, or a message saying why it could not be read.
std::variant<LogExport, std::string> loadLogExport(const std::string& path);

// "2024-05-01 21:14:03.123456+0200" (also with "T", "Z" or "+02:00", and without fraction or
// zone, which then reads as UTC); absent when it is not such a time.
std::optional<WallTime> parseLogTimestamp(std::string_view text);

}  // namespace corvanel
