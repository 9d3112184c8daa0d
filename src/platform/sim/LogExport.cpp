#include "platform/sim/LogExport.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <limits>

#include "platform/sim/InputFile.h"
#include "platform/sim/JsonObjectReader.h"

namespace corvanel {
namespace {

constexpr std::chrono::year earliestYear{1900};
constexpr std::chrono::year endYear{2200};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads exactly `count` digits at `at` into `value`.
bool readDigits(std::string_view text, std::size_t& at, std::size_t count, int& value) {
    if (text.size() - at < count) return false;
    value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const char c = text[at + i];
        if (!isDigit(c)) return false;
        value = value * 10 + (c - '0');
    }
    at += count;
    return true;
}

bool readChar(std::string_view text, std::size_t& at, char expected) {
    if (at >= text.size() || text[at] != expected) return false;
    ++at;
    return true;
}

std::string lastPathComponent(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// One line as a log entry; nothing for a line to pass over, or the problem.
std::variant<std::monostate, LogEntry, std::string> entryFromLine(std::string_view line) {
    if (line.find_first_not_of(" \t\r") == std::string_view::npos) return std::monostate{};
    auto read = readJsonObject(line);
    if (const JsonError* error = std::get_if<JsonError>(&read))
        return "not a JSON object (" + error->reason + " at column " +
               std::to_string(error->offset + 1) + ")";
    const JsonObject& object = std::get<JsonObject>(read);
    if (!object.scalars.contains("eventMessage")) return std::monostate{};
    const std::string* message = object.text("eventMessage");
    if (!message) return std::string("\"eventMessage\" is not a text");
    const std::string* timestamp = object.text("timestamp");
    if (!timestamp) return std::string("no \"timestamp\" text");
    const auto time = parseLogTimestamp(*timestamp);
    if (!time) return "unreadable \"timestamp\" \"" + *timestamp + "\"";
    const std::string* imagePath = object.text("processImagePath");
    if (!imagePath) return std::string("no \"processImagePath\" text");
    return LogEntry{lastPathComponent(*imagePath), *message, *time};
}

LogExportVisitor collectingInto(LogExport& result) {
    return {[&result](LogEntry entry) { result.entries.push_back(std::move(entry)); },
            [&result](LogExportProblem problem) { result.problems.push_back(std::move(problem)); }};
}

}  // namespace

std::optional<WallTime> parseLogTimestamp(std::string_view text) {
    using namespace std::chrono;
    std::size_t at = 0;
    int yearValue = 0, monthValue = 0, dayValue = 0, hour = 0, minute = 0, second = 0;
    if (!readDigits(text, at, 4, yearValue) || !readChar(text, at, '-') ||
        !readDigits(text, at, 2, monthValue) || !readChar(text, at, '-') ||
        !readDigits(text, at, 2, dayValue))
        return std::nullopt;
    if (!readChar(text, at, ' ') && !readChar(text, at, 'T')) return std::nullopt;
    if (!readDigits(text, at, 2, hour) || !readChar(text, at, ':') ||
        !readDigits(text, at, 2, minute) || !readChar(text, at, ':') ||
        !readDigits(text, at, 2, second))
        return std::nullopt;
    if (hour > 23 || minute > 59 || second > 60) return std::nullopt;
    const year_month_day date{year{yearValue}, month{static_cast<unsigned>(monthValue)},
                              day{static_cast<unsigned>(dayValue)}};
    if (!date.ok()) return std::nullopt;

    // Fraction of a second: up to nanoseconds are kept, further digits are read and dropped.
    nanoseconds fraction{0};
    if (readChar(text, at, '.')) {
        std::int64_t scale = 100'000'000;
        const std::size_t start = at;
        while (at < text.size() && isDigit(text[at])) {
            fraction += nanoseconds{(text[at] - '0') * scale};
            scale /= 10;
            ++at;
        }
        if (at == start) return std::nullopt;
    }

    minutes offset{0};
    if (at < text.size()) {
        if (readChar(text, at, 'Z')) {
            // UTC
        } else if (text[at] == '+' || text[at] == '-') {
            const int sign = text[at] == '-' ? -1 : 1;
            ++at;
            int offsetHours = 0, offsetMinutes = 0;
            if (!readDigits(text, at, 2, offsetHours)) return std::nullopt;
            readChar(text, at, ':');
            if (!readDigits(text, at, 2, offsetMinutes)) return std::nullopt;
            if (offsetHours > 23 || offsetMinutes > 59) return std::nullopt;
            offset = minutes{sign * (offsetHours * 60 + offsetMinutes)};
        } else {
            return std::nullopt;
        }
    }
    if (at != text.size()) return std::nullopt;

    // In whole seconds first: a year such as 0000 or 9999 in nanoseconds would not fit.
    const sys_seconds utc =
        sys_days{date} + hours{hour} + minutes{minute} + seconds{second} - offset;
    if (utc < sys_days{earliestYear / January / 1} || utc >= sys_days{endYear / January / 1})
        return std::nullopt;
    return time_point_cast<WallTime::duration>(utc) + duration_cast<WallTime::duration>(fraction);
}

void readLogExport(std::istream& input, const LogExportVisitor& visitor) {
    std::string line(longestLogLine + 1, '\0');
    std::size_t number = 0;
    for (;;) {
        input.getline(line.data(), static_cast<std::streamsize>(line.size()));
        const auto length = static_cast<std::size_t>(input.gcount());
        if (input.bad() || (length == 0 && input.eof())) return;
        ++number;
        if (input.fail() && !input.eof()) {
            // The buffer filled before the line ended: pass over the rest of it.
            input.clear();
            input.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
            visitor.problem({number, "longer than " + std::to_string(longestLogLine) + " bytes"});
            continue;
        }
        // gcount counts the newline that getline consumed but did not store.
        const std::size_t stored = input.eof() ? length : length - 1;
        auto entry = entryFromLine(std::string_view(line.data(), stored));
        if (auto* problem = std::get_if<std::string>(&entry)) {
            visitor.problem({number, std::move(*problem)});
        } else if (auto* found = std::get_if<LogEntry>(&entry)) {
            visitor.entry(std::move(*found));
        }
        if (input.eof()) return;
    }
}

LogExport readLogExport(std::istream& input) {
    LogExport result;
    readLogExport(input, collectingInto(result));
    return result;
}

std::optional<std::string> streamLogExport(const std::string& path,
                                           const LogExportVisitor& visitor) {
    if (const auto reason = unsuitableInputReason(path))
        return "cannot read " + path + ": " + *reason;
    std::ifstream file(path, std::ios::binary);
    if (!file) return "cannot open " + path + ": " + std::strerror(errno);
    readLogExport(file, visitor);
    if (file.bad()) return "cannot read " + path + ": " + std::strerror(errno);
    return std::nullopt;
}

std::variant<LogExport, std::string> loadLogExport(const std::string& path) {
    LogExport result;
    if (auto error = streamLogExport(path, collectingInto(result))) return std::move(*error);
    return result;
}

}  // namespace corvanel
