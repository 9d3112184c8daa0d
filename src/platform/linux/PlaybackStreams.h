#pragma once
// What the sound server knows about the streams programs play: the Linux player adapter asks it
// for a track's format when the track is no local file (a stream, a URL it cannot open).
#include <cstdint>
#include <optional>
#include <string>

namespace corvanel {

struct PlaybackStreamFormat {
    double sampleRate = 0;
    // The server's name of the sample format the stream was opened with ("S16LE", "S24LE",
    // "S32LE", "F32LE", ...): what the player chose, not necessarily the file's depth.
    std::string sampleFormat;
};

class PlaybackStreams {
  public:
    virtual ~PlaybackStreams() = default;

    // The format of a playback stream that the process with this id runs now; the most recently
    // created one when it runs several; nothing when it plays nothing. Never blocks on the
    // server: it answers from what the adapter already knows.
    virtual std::optional<PlaybackStreamFormat> streamOfProcess(std::int64_t processID) const = 0;
};

}  // namespace corvanel
