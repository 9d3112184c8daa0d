#pragma once
// The records that carry a detected source format through rate switching. Plain values, safe to
// hand from the background log scan to the main thread.
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "platform/Clock.h"

namespace corvanel {

struct RateDetection {
    double sampleRate = 0;                    // Hz
    std::optional<std::int64_t> bitDepth;     // bits per sample, when known
    std::optional<std::int64_t> bitRateKbps;  // encoded bit rate, when known
    std::string source;                       // "Apple Music", "Lossless decoder", ... or a kind
    WallTime date;                            // the log entry's time, or when the record was built
    std::string rawMessage;                   // the log message, or a synthetic description

    friend bool operator==(const RateDetection&, const RateDetection&) = default;
};

// The engine's duplicate test: the same rate, depth and bit rate; source, date and message play
// no part.
inline bool hasSameFormat(const RateDetection& a, const RateDetection& b) {
    return a.sampleRate == b.sampleRate && a.bitDepth == b.bitDepth &&
           a.bitRateKbps == b.bitRateKbps;
}

// The result of one log scan: the newest usable record, a failure with its complete user-facing
// message, or nothing usable.
struct ScanFound {
    RateDetection detection;
    friend bool operator==(const ScanFound&, const ScanFound&) = default;
};
struct ScanFailed {
    std::string message;
    friend bool operator==(const ScanFailed&, const ScanFailed&) = default;
};
struct ScanNothing {
    friend bool operator==(const ScanNothing&, const ScanNothing&) = default;
};
using ScanOutcome = std::variant<ScanFound, ScanFailed, ScanNothing>;

}  // namespace corvanel
