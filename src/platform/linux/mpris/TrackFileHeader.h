#pragma once
// What a local track file's own header says about its format: the rate, the bit depth of linear
// PCM and lossless files, the bit rate of compressed ones, and a description of its kind. The
// one reliable source of a track's depth on Linux, where a playback stream carries the format
// the player chose to open, not the file's.
#include <cstdint>
#include <optional>
#include <string>

namespace corvanel {

struct TrackFileFormat {
    double sampleRate = 0;
    std::optional<std::int64_t> bitDepth;     // linear PCM and lossless files
    std::optional<std::int64_t> bitRateKbps;  // compressed files
    std::string kind;                         // "FLAC audio file", "MPEG audio file", ...

    friend bool operator==(const TrackFileFormat&, const TrackFileFormat&) = default;
};

// The header of the regular file at `path`, read with libsndfile (and for MPEG audio its first
// frame, for the bit rate); nothing for anything else (a missing file, a directory, a FIFO) or
// a file libsndfile does not read. Blocking: call it off the main thread.
std::optional<TrackFileFormat> readTrackFileHeader(const std::string& path);

}  // namespace corvanel
