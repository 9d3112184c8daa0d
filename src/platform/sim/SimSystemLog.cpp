#include "platform/sim/SimSystemLog.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace corvanel {

SimSystemLog::SimSystemLog(EndOfLog endOfLog) : endOfLog_(std::move(endOfLog)) {}

SimSystemLog::SimSystemLog(const std::shared_ptr<MainExecutor>& executor)
    : endOfLog_([weak = std::weak_ptr<MainExecutor>(executor)] {
          const auto target = weak.lock();
          return target ? target->wallNow() : WallTime::max();
      }) {}

void SimSystemLog::add(std::string process, std::string message, WallTime time) {
    std::lock_guard lock(mutex_);
    entries_.push_back({std::move(process), std::move(message), time});
}

void SimSystemLog::add(std::vector<LogEntry> entries) {
    std::lock_guard lock(mutex_);
    for (LogEntry& entry : entries)
        entries_.push_back(std::move(entry));
}

void SimSystemLog::failWith(std::optional<std::string> description) {
    std::lock_guard lock(mutex_);
    failure_ = std::move(description);
}

std::size_t SimSystemLog::enumerationCount() const {
    std::lock_guard lock(mutex_);
    return enumerations_;
}

std::optional<std::string> SimSystemLog::enumerate(const std::string& process, double secondsBack,
                                                   const EntryVisitor& visit) {
    std::vector<LogEntry> matching;
    {
        std::lock_guard lock(mutex_);
        ++enumerations_;
        if (failure_) return failure_;
        if (entries_.empty()) return std::nullopt;
        const WallTime end = endOfLog_ ? endOfLog_()
                                       : std::max_element(entries_.begin(), entries_.end(),
                                                          [](const LogEntry& a, const LogEntry& b) {
                                                              return a.time < b.time;
                                                          })
                                             ->time;
        const WallTime start =
            end - std::chrono::duration_cast<WallTime::duration>(Seconds{secondsBack});
        for (const LogEntry& entry : entries_) {
            if (entry.process == process && entry.time >= start && entry.time <= end)
                matching.push_back(entry);
        }
    }
    // Oldest first; entries with the same time stamp stay in the order they were written.
    std::stable_sort(matching.begin(), matching.end(),
                     [](const LogEntry& a, const LogEntry& b) { return a.time < b.time; });
    for (const LogEntry& entry : matching)
        visit(entry.message, entry.time);
    return std::nullopt;
}

}  // namespace corvanel
