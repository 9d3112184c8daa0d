#include "switching/ScanLogReport.h"

#include <chrono>
#include <cmath>
#include <cstdio>

#include "switching/LogScanner.h"
#include "switching/NumberText.h"
#include "switching/RateLabels.h"
#include "switching/UnicodeNumeric.h"

namespace corvanel {
namespace {

// Valid JSON in valid UTF-8 whatever the text holds: a byte that is not part of a well-formed
// UTF-8 character is written as U+FFFD.
std::string jsonString(const std::string& text) {
    std::string out = "\"";
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at];
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x80) {
            std::size_t length = 1;
            const char32_t decoded = decodeUtf8(text, at, length);
            if (decoded == U'\uFFFD' && length == 1)
                out += "\\ufffd";
            else
                out.append(text, at, length);
            at += length;
            continue;
        }
        ++at;
        if (c == '"') {
            out += "\\\"";
        } else if (c == '\\') {
            out += "\\\\";
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\t') {
            out += "\\t";
        } else if (c == '\r') {
            out += "\\r";
        } else if (byte < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", byte);
            out += escaped;
        } else {
            out += c;
        }
    }
    return out + "\"";
}

// About 31 years, more than any log holds; a longer span would reach past what a clock counts.
constexpr double longestSpan = 1e9;

std::string jsonNumber(double value) {
    if (value == std::round(value) && std::fabs(value) < 1e15)
        return std::to_string(static_cast<long long>(value));
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

std::string jsonInteger(const std::optional<std::int64_t>& value) {
    return value ? std::to_string(*value) : "null";
}

}  // namespace

std::variant<ScanLogOptions, std::string> parseScanLogArguments(
    const std::vector<std::string>& arguments) {
    ScanLogOptions options;
    bool havePath = false;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& argument = arguments[index];
        const bool hasValue = index + 1 < arguments.size();
        if (argument == "--json") {
            options.json = true;
        } else if (argument == "--seconds") {
            if (!hasValue) return std::string("--seconds needs a number of seconds");
            const auto seconds = parseDecimal(arguments[++index]);
            if (!seconds || !(*seconds > 0) || *seconds > longestSpan)
                return "--seconds needs a positive number up to 1e9, not \"" + arguments[index] +
                       "\"";
            options.seconds = *seconds;
        } else if (argument == "--now") {
            if (!hasValue) return std::string("--now needs a time");
            options.now = arguments[++index];
        } else if (argument.starts_with("--")) {
            return "unknown option " + argument;
        } else if (havePath) {
            return "only one log file, please (also got \"" + argument + "\")";
        } else {
            options.path = argument;
            havePath = true;
        }
    }
    if (!havePath) return std::string("no log file given");
    return options;
}

std::string scanLogReport(SystemLog& log, double seconds, bool json) {
    const ScanOutcome outcome = LogScanner::scanRecentLogs(log, seconds);
    return json ? scanOutcomeJson(outcome) : scanOutcomeText(outcome);
}

std::string scanOutcomeJson(const ScanOutcome& outcome) {
    if (const auto* found = std::get_if<ScanFound>(&outcome)) {
        const RateDetection& d = found->detection;
        return "{\"outcome\":\"found\",\"sampleRate\":" + jsonNumber(d.sampleRate) +
               ",\"bitDepth\":" + jsonInteger(d.bitDepth) +
               ",\"bitRateKbps\":" + jsonInteger(d.bitRateKbps) +
               ",\"source\":" + jsonString(d.source) + ",\"date\":" + jsonString(iso8601(d.date)) +
               ",\"rawMessage\":" + jsonString(d.rawMessage) + "}";
    }
    if (const auto* failed = std::get_if<ScanFailed>(&outcome))
        return "{\"outcome\":\"failed\",\"message\":" + jsonString(failed->message) + "}";
    return "{\"outcome\":\"nothing\"}";
}

std::string scanOutcomeText(const ScanOutcome& outcome) {
    if (const auto* found = std::get_if<ScanFound>(&outcome)) {
        const RateDetection& d = found->detection;
        return "Found " + detectedText(d) + " (" + d.source + ") at " + iso8601(d.date) + "\n  " +
               d.rawMessage;
    }
    if (const auto* failed = std::get_if<ScanFailed>(&outcome)) return "Failed: " + failed->message;
    return "Nothing usable from Music in the scanned span.";
}

std::string iso8601(WallTime time) {
    using namespace std::chrono;
    const auto micros = time_point_cast<microseconds>(time);
    const auto day = floor<days>(micros);
    const year_month_day date{day};
    const hh_mm_ss clock{micros - day};
    char text[48];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02lld.%06lldZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<long long>(clock.seconds().count()),
                  static_cast<long long>(clock.subseconds().count()));
    return text;
}

}  // namespace corvanel
