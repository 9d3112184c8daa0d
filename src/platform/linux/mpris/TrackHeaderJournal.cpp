#include "platform/linux/mpris/TrackHeaderJournal.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace corvanel {

TrackHeaderJournal::TrackHeaderJournal(std::string process, Clock now)
    : process_(std::move(process)), now_(std::move(now)) {}

void TrackHeaderJournal::record(std::string message, WallTime time) {
    std::lock_guard lock(mutex_);
    entries_.push_back({std::move(message), time});
    if (entries_.size() > capacity) entries_.pop_front();
}

std::optional<std::string> TrackHeaderJournal::enumerate(const std::string& process,
                                                         double secondsBack,
                                                         const EntryVisitor& visit) {
    if (process != process_) return std::nullopt;
    const WallTime end = now_();
    const WallTime start =
        end - std::chrono::duration_cast<WallTime::duration>(Seconds{secondsBack});
    std::vector<Entry> within;
    {
        std::lock_guard lock(mutex_);
        for (const Entry& entry : entries_) {
            if (entry.time >= start && entry.time <= end) within.push_back(entry);
        }
    }
    // Oldest first; entries of the same time stay in the order they were recorded.
    std::stable_sort(within.begin(), within.end(),
                     [](const Entry& a, const Entry& b) { return a.time < b.time; });
    for (const Entry& entry : within)
        visit(entry.message, entry.time);
    return std::nullopt;
}

}  // namespace corvanel
