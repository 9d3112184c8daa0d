#pragma once
// Talks to the Music app through its scripting interface: what it knows about the current track,
// its player state, and pausing, rewinding and resuming playback. Every script is a fixed text
// (platform/MusicScripts.h).
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/MusicScripts.h"
#include "platform/ScriptRunner.h"
#include "platform/Task.h"

namespace corvanel::MusicController {

// What the Music app itself reports about the current track.
struct TrackTechnicals {
    double sampleRate = 0;                    // Hz, 8000 to 768000
    std::optional<std::int64_t> bitRateKbps;  // absent when unreported or not a plain integer
    std::string kind;                         // never empty: "Music library" stands in

    friend bool operator==(const TrackTechnicals&, const TrackTechnicals&) = default;
};

// One script's reply; absent when the app is not running (nothing is sent then, so no script
// ever launches it), or the script could not run or gave no text (empty is a valid reply).
std::optional<std::string> runScript(ScriptRunner& scripts, const std::string& source);

// The current track's rate, bit rate and kind; absent when the app is not running or its reply
// is unusable.
std::optional<TrackTechnicals> currentTrackTechnicals(ScriptRunner& scripts);

// Polls the player state up to `attempts` times, 0.1 s apart; whether it reached `state`.
Task<bool> awaitState(std::shared_ptr<ScriptRunner> scripts, std::string state, int attempts);

// Rewinds to the start (confirming the position), plays, waits for "playing", and rewinds once
// more if the first second already slipped by.
Task<> restartTrackAndPlay(std::shared_ptr<ScriptRunner> scripts);

}  // namespace corvanel::MusicController
