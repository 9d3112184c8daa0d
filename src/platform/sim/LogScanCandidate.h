#pragma once
// An exported log scanned as a stream: of all its entries, only the one a scan of the Music
// process's messages could choose is kept, so that an export of any length (even an endless
// one) is scanned in the memory of one entry.
#include <functional>
#include <optional>
#include <string>
#include <variant>

#include "platform/sim/LogExport.h"
#include "switching/RateDetection.h"

namespace corvanel {

class LogScanCandidate {
  public:
    // `end`: the end of the log when it is known in advance; entries after it are never chosen.
    explicit LogScanCandidate(std::optional<WallTime> end);

    void offer(LogEntry entry);

    // The newest usable entry of the Music process (of equal time stamps the one offered last,
    // as the scan's own selection picks), or nothing.
    const std::optional<LogEntry>& entry() const { return candidate_; }
    // The end of the log: the given one, else the newest time stamp of any process, if any.
    std::optional<WallTime> end() const { return end_ ? end_ : newest_; }

  private:
    std::optional<WallTime> end_;
    std::optional<WallTime> newest_;
    std::optional<LogEntry> candidate_;
};

// The scan of the last `seconds` before `end` (the newest entry when absent) of the export at
// `path`, by the real recognisers and selection rule, streamed; each malformed line goes to
// `problem` as it is read. A message saying why the file cannot be read instead.
std::variant<ScanOutcome, std::string> scanLogExport(
    const std::string& path, double seconds, std::optional<WallTime> end,
    const std::function<void(const LogExportProblem&)>& problem);

}  // namespace corvanel
