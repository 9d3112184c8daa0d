#include "platform/linux/mpris/MprisTrackHeaders.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/TrackHeaderMessage.h"
#include "platform/linux/mpris/LocalFileUrl.h"

namespace corvanel {

std::shared_ptr<MprisTrackHeaders> MprisTrackHeaders::create(
    std::shared_ptr<MainExecutor> executor, MprisPlayers& players,
    std::shared_ptr<TrackHeaderJournal> journal) {
    auto headers = std::make_shared<MprisTrackHeaders>(ConstructionKey{}, std::move(executor),
                                                       std::move(journal));
    MprisTrackHeaders* self = headers.get();
    headers->trackChanged_ =
        players.trackChanged.connect([self](const std::string& url) { self->whenRead(url, {}); });
    headers->playbackStarted_ =
        players.playbackStarted.connect([self](const MprisPlayers::PlaybackStart& start) {
            self->whenRead(start.url, [journal = self->journal_, time = start.time](
                                          const std::optional<TrackFileFormat>& format) {
                if (!format) return;
                journal->record(TrackHeaderMessage::compose(std::llround(format->sampleRate),
                                                            format->bitDepth, format->kind),
                                time);
            });
        });
    return headers;
}

MprisTrackHeaders::MprisTrackHeaders(ConstructionKey, std::shared_ptr<MainExecutor> executor,
                                     std::shared_ptr<TrackHeaderJournal> journal)
    : executor_(std::move(executor)), journal_(std::move(journal)) {}

MprisTrackHeaders::Lookup MprisTrackHeaders::lookup(const std::string& url) {
    if (!localPathOfUrl(url)) return NoFile{};
    const auto found = entries_.find(url);
    if (found == entries_.end()) {
        whenRead(url, {});
        return Reading{};
    }
    found->second.used = ++uses_;
    if (found->second.reading) return Reading{};
    if (found->second.format) return *found->second.format;
    return NoFile{};
}

void MprisTrackHeaders::whenRead(const std::string& url, Waiter waiter) {
    const std::optional<std::string> path = localPathOfUrl(url);
    if (!path) {
        if (waiter) waiter(std::nullopt);
        return;
    }
    if (const auto found = entries_.find(url); found != entries_.end()) {
        Entry& entry = found->second;
        entry.used = ++uses_;
        if (!entry.reading) {
            if (waiter) waiter(entry.format);
        } else if (waiter) {
            entry.waiting.push_back(std::move(waiter));
        }
        return;
    }
    forgetOldest();
    Entry& entry = entries_[url];
    entry.used = ++uses_;
    if (waiter) entry.waiting.push_back(std::move(waiter));
    // The read touches nothing here: it hands its result over on the main thread, if this is
    // still there to take it.
    auto result = std::make_shared<std::optional<TrackFileFormat>>();
    executor_->runInBackground([result, path = *path] { *result = readTrackFileHeader(path); },
                               [weak = weak_from_this(), url, result] {
                                   if (const auto self = weak.lock())
                                       self->finishRead(url, std::move(*result));
                               },
                               // The engine's first scan asks for the header 0.6 s after the
                               // track starts.
                               BackgroundPriority::userInitiated);
}

void MprisTrackHeaders::finishRead(const std::string& url, std::optional<TrackFileFormat> format) {
    const auto found = entries_.find(url);
    if (found == entries_.end()) return;
    Entry& entry = found->second;
    entry.reading = false;
    entry.format = std::move(format);
    const std::vector<Waiter> waiting = std::exchange(entry.waiting, {});
    const std::optional<TrackFileFormat> known = entry.format;
    for (const Waiter& waiter : waiting)
        waiter(known);
}

void MprisTrackHeaders::forgetOldest() {
    if (entries_.size() < capacity) return;
    auto oldest = entries_.end();
    for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
        if (!entry->second.reading &&
            (oldest == entries_.end() || entry->second.used < oldest->second.used))
            oldest = entry;
    }
    if (oldest != entries_.end()) entries_.erase(oldest);
}

}  // namespace corvanel
