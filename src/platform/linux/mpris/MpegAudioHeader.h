#pragma once
// The bit rate of an MPEG audio file (MP3 and its Layer I and II kin), which libsndfile does not
// report: read from the first frame header, or for a variable-rate file the average its Xing or
// VBRI header states.
#include <cstdint>
#include <optional>
#include <span>

namespace corvanel {

// The length of the ID3v2 tag at the start of a file (header, body and footer if flagged), or 0
// when the first ten bytes are no tag header.
std::uint64_t id3v2TagLength(std::span<const std::uint8_t> fileStart);

// The stream's bit rate in kbps, from the first frame header in `audio` (the bytes after any
// ID3v2 tag; junk before the frame is skipped) whose successor, when `audio` reaches it, is a
// frame of the same kind. A Xing header with a frame count (not LAME's "Info" of a constant-rate
// file) or a VBRI header gives the average over the stream, `audioLength` bytes from the frame
// on when the header states no byte count. Nothing when no frame is found.
std::optional<std::int64_t> mpegBitRateKbps(std::span<const std::uint8_t> audio,
                                            std::uint64_t audioLength);

}  // namespace corvanel
