#pragma once
// A simulated unified system log: messages per process with time stamps, in memory or loaded
// from an exported log file. "The last N seconds" counts back from the end of the log, which is
// the given clock's time (the executor's wall clock in tests) or, without a clock, the newest
// entry. Safe to enumerate from the background thread while the main thread adds entries.
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/MainExecutor.h"
#include "platform/SystemLog.h"
#include "platform/sim/LogExport.h"

namespace corvanel {

class SimSystemLog final : public SystemLog {
  public:
    using EndOfLog = std::function<WallTime()>;

    explicit SimSystemLog(EndOfLog endOfLog = {});
    // The log ends at the executor's wall clock ("now" in virtual or real time).
    explicit SimSystemLog(const std::shared_ptr<MainExecutor>& executor);

    void add(std::string process, std::string message, WallTime time);
    void add(std::vector<LogEntry> entries);
    // While set, every enumeration fails with this localized description.
    void failWith(std::optional<std::string> description);
    // How many enumerations have been asked for (including failed ones).
    std::size_t enumerationCount() const;

    std::optional<std::string> enumerate(const std::string& process, double secondsBack,
                                         const EntryVisitor& visit) override;

  private:
    EndOfLog endOfLog_;
    mutable std::mutex mutex_;
    std::vector<LogEntry> entries_;
    std::optional<std::string> failure_;
    std::size_t enumerations_ = 0;
};

}  // namespace corvanel
