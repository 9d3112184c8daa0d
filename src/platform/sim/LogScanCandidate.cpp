#include "platform/sim/LogScanCandidate.h"

#include <algorithm>
#include <utility>

#include "platform/sim/SimSystemLog.h"
#include "switching/LogScanner.h"

namespace corvanel {

LogScanCandidate::LogScanCandidate(std::optional<WallTime> end) : end_(end) {}

void LogScanCandidate::offer(LogEntry entry) {
    newest_ = newest_ ? std::max(*newest_, entry.time) : entry.time;
    if (entry.process != LogScanner::musicProcess || (end_ && entry.time > *end_)) return;
    // An entry older than the candidate can never be chosen: whatever span is scanned up to the
    // end of the log, the candidate is in it too.
    if (candidate_ && entry.time < candidate_->time) return;
    if (LogScanner::parse(entry.message, entry.time)) candidate_ = std::move(entry);
}

std::variant<ScanOutcome, std::string> scanLogExport(
    const std::string& path, double seconds, std::optional<WallTime> end,
    const std::function<void(const LogExportProblem&)>& problem) {
    LogScanCandidate candidate(end);
    const auto error = streamLogExport(
        path, {[&candidate](LogEntry entry) { candidate.offer(std::move(entry)); }, problem});
    if (error) return *error;
    SimSystemLog log([end = candidate.end().value_or(WallTime{})] { return end; });
    if (candidate.entry()) log.add({*candidate.entry()});
    return LogScanner::scanRecentLogs(log, seconds);
}

}  // namespace corvanel
