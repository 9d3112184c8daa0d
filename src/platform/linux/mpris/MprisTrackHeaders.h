#pragma once
// The followed player's track files: each file header is read once, off the main thread, as
// soon as the player names a new track, and kept by URL; each start of a track is journaled from
// its header (once read) at the time the track started.
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/MainExecutor.h"
#include "platform/Signal.h"
#include "platform/linux/mpris/MprisPlayers.h"
#include "platform/linux/mpris/TrackFileHeader.h"
#include "platform/linux/mpris/TrackHeaderJournal.h"

namespace corvanel {

class MprisTrackHeaders : public std::enable_shared_from_this<MprisTrackHeaders> {
  public:
    // The headers kept; the oldest unused one goes first.
    static constexpr std::size_t capacity = 64;

    struct Reading {};  // the header is being read
    struct NoFile {};   // no local file behind the URL, or none with a header libsndfile reads
    using Lookup = std::variant<Reading, NoFile, TrackFileFormat>;

    static std::shared_ptr<MprisTrackHeaders> create(std::shared_ptr<MainExecutor> executor,
                                                     MprisPlayers& players,
                                                     std::shared_ptr<TrackHeaderJournal> journal);

    // What is known of the file behind `url`; starts reading it when nothing is. Main thread.
    Lookup lookup(const std::string& url);

    // Only `create` makes one: the reads hand their result back to it weakly.
    class ConstructionKey {
        friend class MprisTrackHeaders;
        ConstructionKey() = default;
    };
    MprisTrackHeaders(ConstructionKey, std::shared_ptr<MainExecutor> executor,
                      std::shared_ptr<TrackHeaderJournal> journal);

  private:
    using Waiter = std::function<void(const std::optional<TrackFileFormat>&)>;
    struct Entry {
        bool reading = true;
        std::optional<TrackFileFormat> format;
        std::vector<Waiter> waiting;
        std::uint64_t used = 0;
    };

    // Calls `waiter` with the header of the file behind `url` once it is known (at once when it
    // is), with nothing when there is none.
    void whenRead(const std::string& url, Waiter waiter);
    void finishRead(const std::string& url, std::optional<TrackFileFormat> format);
    void forgetOldest();

    std::shared_ptr<MainExecutor> executor_;
    std::shared_ptr<TrackHeaderJournal> journal_;
    std::map<std::string, Entry> entries_;
    std::uint64_t uses_ = 0;
    Connection trackChanged_;
    Connection playbackStarted_;
};

}  // namespace corvanel
