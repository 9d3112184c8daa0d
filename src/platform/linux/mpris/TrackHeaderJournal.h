#pragma once
// The system-log port on Linux: players write no decoder messages, so the player adapter keeps
// a journal of its own, one entry per start of a track, from the track file's header. It stands
// in for the log of one process name (the process the engine reads, which on Linux means the
// followed player) and answers like the system log: the entries of the last N seconds before
// now, oldest first. Entries are recorded on the main thread and read from the scan's
// background thread.
#include <deque>
#include <functional>
#include <mutex>
#include <string>

#include "platform/SystemLog.h"

namespace corvanel {

class TrackHeaderJournal final : public SystemLog {
  public:
    using Clock = std::function<WallTime()>;
    // The newest entries kept; a day of listening writes fewer.
    static constexpr std::size_t capacity = 256;

    TrackHeaderJournal(std::string process, Clock now);

    void record(std::string message, WallTime time);

    std::optional<std::string> enumerate(const std::string& process, double secondsBack,
                                         const EntryVisitor& visit) override;

  private:
    struct Entry {
        std::string message;
        WallTime time;
    };

    const std::string process_;
    const Clock now_;
    std::mutex mutex_;
    std::deque<Entry> entries_;
};

}  // namespace corvanel
