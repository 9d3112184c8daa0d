#pragma once
// The message a track header journal writes when a track starts to play: the rate and, for
// linear PCM and lossless files, the bit depth that the track's own file header states. Players
// that write no decoder messages of their own are followed through it; the journal writes it and
// the log recognisers read it, so both use the one copy here.
#include <cstdint>
#include <optional>
#include <string>

namespace corvanel::TrackHeaderMessage {

inline constexpr const char* subject = "Track file header";
inline constexpr const char* rateOpen = "rate = ";
inline constexpr const char* rateClose = " Hz";
inline constexpr const char* depthOpen = "depth = ";
inline constexpr const char* depthClose = " bit";

// "Track file header: rate = 96000 Hz, depth = 24 bit (FLAC audio file)"; without a depth the
// depth part is left out. The kind is a fixed description, never a file name, so no text of the
// file's choosing can put a marker into the message.
inline std::string compose(std::int64_t rate, std::optional<std::int64_t> depth,
                           const std::string& kind) {
    std::string message = std::string(subject) + ": " + rateOpen + std::to_string(rate) + rateClose;
    if (depth) message += std::string(", ") + depthOpen + std::to_string(*depth) + depthClose;
    return message + " (" + kind + ")";
}

}  // namespace corvanel::TrackHeaderMessage
