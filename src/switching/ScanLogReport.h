#pragma once
// The scan-log diagnostic: its arguments, and one log scan rendered for a person or as a single
// JSON object. The real recognisers and selection rule run over whatever log the caller hands
// in (an exported log file in the tool).
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/SystemLog.h"
#include "switching/RateDetection.h"

namespace corvanel {

struct ScanLogOptions {
    std::string path;
    double seconds = 1800;
    std::optional<std::string> now;  // a log time stamp; the newest entry when absent
    bool json = false;
};

inline constexpr const char* scanLogUsage = "FILE [--seconds S] [--now TIME] [--json]";

// The options, or a message saying what is wrong with the arguments.
std::variant<ScanLogOptions, std::string> parseScanLogArguments(
    const std::vector<std::string>& arguments);

// Scans the last `seconds` of the Music process's messages in `log` and renders the outcome.
std::string scanLogReport(SystemLog& log, double seconds, bool json);

// {"outcome":"found",...}, {"outcome":"nothing"} or {"outcome":"failed","message":...}.
std::string scanOutcomeJson(const ScanOutcome& outcome);
std::string scanOutcomeText(const ScanOutcome& outcome);

// UTC, with microseconds: 2024-05-01T19:14:03.123456Z.
std::string iso8601(WallTime time);

}  // namespace corvanel
