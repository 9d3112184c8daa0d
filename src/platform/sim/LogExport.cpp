#include "platform/sim/LogExport.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>

#include "platform/sim/JsonObjectReader.h"

namespace corvanel {
namespace {

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

    const sys_time<nanoseconds> local =
        sys_days{date} + hours{hour} + minutes{minute} + seconds{second} + fraction;
    return time_point_cast<WallTime::duration>(local - offset);
}

LogExport readLogExport(std::istream& input) {
    LogExport result;
    std::string line;
    std::size_t number = 0;
    while (std::getline(input, line)) {
        ++number;
        auto entry = entryFromLine(line);
        if (auto* problem = std::get_if<std::string>(&entry)) {
            result.problems.push_back({number, std::move(*problem)});
        } else if (auto* found = std::get_if<LogEntry>(&entry)) {
            result.entries.push_back(std::move(*found));
        }
    }
    return result;
}

std::variant<LogExport, std::string> loadLogExport(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return "cannot open " + path + ": " + std::strerror(errno);
    LogExport result = readLogExport(file);
    if (file.bad()) return "cannot read " + path + ": " + std::strerror(errno);
    return result;
}

}  // namespace corvanel
