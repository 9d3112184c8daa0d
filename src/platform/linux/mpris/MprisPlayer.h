#pragma once
// What the adapter knows of one MPRIS player on the session bus, kept fresh by its signals and
// asynchronous reads, so that every question about it is answered at once from here.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/Clock.h"

namespace corvanel {

enum class PlaybackStatus { playing, paused, stopped };

// What tells one track from the next: a new track id or a new URL (a stream's changing title
// does not make a new track).
struct TrackIdentity {
    std::string trackId;  // mpris:trackid, an object path; empty when the player sent none
    std::string url;      // xesam:url; empty when the player sent none

    friend bool operator==(const TrackIdentity&, const TrackIdentity&) = default;
};

struct MprisPlayer {
    std::string identity;  // the player's Identity; empty until read
    std::string busName;   // the first well-known name it was seen under
    std::optional<PlaybackStatus> status;
    TrackIdentity track;
    std::optional<std::int64_t> processID;
    // The last position read or signalled, when, and the playback rate that moves it on.
    std::optional<std::int64_t> positionMicroseconds;
    MonoTime positionTime{};
    double rate = 1;
    // Orders of events among all players: when it was seen first, when it last started playing.
    std::uint64_t seen = 0;
    std::uint64_t startedPlaying = 0;

    // The position now: the last one read, moved on by the time since while playing.
    std::optional<double> positionSeconds(MonoTime now) const {
        if (!positionMicroseconds) return std::nullopt;
        double seconds = static_cast<double>(*positionMicroseconds) / 1e6;
        if (status == PlaybackStatus::playing)
            seconds += Seconds(now - positionTime).count() * rate;
        return seconds;
    }
    // Keeps the position where it has got to, before a change of status or rate.
    void settlePosition(MonoTime now) {
        // Clamped so that a player's absurd position or rate cannot overflow the count.
        if (const auto seconds = positionSeconds(now))
            positionMicroseconds =
                static_cast<std::int64_t>(std::clamp(*seconds * 1e6, -9e18, 9e18));
        positionTime = now;
    }
};

}  // namespace corvanel
