#include "switching/LogScanner.h"

#include <cmath>
#include <string>

#include "platform/TrackHeaderMessage.h"
#include "switching/NumberText.h"
#include "switching/UnicodeNumeric.h"

namespace corvanel::LogScanner {
namespace {

constexpr double lowestRate = 32000;
constexpr double highestRate = 768000;

bool contains(std::string_view text, std::string_view marker) {
    return text.find(marker) != std::string_view::npos;
}

// The text between the first `open` and the first `close` after it, or nothing when either is
// missing.
std::optional<std::string_view> between(std::string_view text, std::string_view open,
                                        std::string_view close) {
    const std::size_t openAt = text.find(open);
    if (openAt == std::string_view::npos) return std::nullopt;
    const std::size_t start = openAt + open.size();
    const std::size_t closeAt = text.find(close, start);
    if (closeAt == std::string_view::npos) return std::nullopt;
    return text.substr(start, closeAt - start);
}

// A rate text in Hz, or in kHz below 1000; nothing when it is not a number or implausible.
std::optional<double> normalisedRate(std::string_view rateText) {
    const std::optional<double> value = parseDecimal(rateText);
    if (!value) return std::nullopt;
    const double rate = *value < 1000 ? std::round(*value * 1000) : std::round(*value);
    if (rate < lowestRate || rate > highestRate) return std::nullopt;
    return rate;
}

// The deepest sample format there is holds 64 bits; a depth outside 1 ... 64 is a number that
// is not a bit depth, and is read as no depth like any other unreadable depth text.
constexpr std::int64_t deepestDepth = 64;

std::optional<std::int64_t> depthBetween(std::string_view message, std::string_view open,
                                         std::string_view close) {
    const auto text = between(message, open, close);
    if (!text) return std::nullopt;
    const std::optional<std::int64_t> depth = parsePlainInteger(trimSpacesAndTabs(*text));
    if (!depth || *depth < 1 || *depth > deepestDepth) return std::nullopt;
    return depth;
}

// The run of numeric characters and points right after "sampleRate:", nothing skipped.
std::string_view numericRunAfter(std::string_view message, std::size_t start) {
    std::size_t end = start;
    while (end < message.size()) {
        std::size_t length = 1;
        const char32_t c = decodeUtf8(message, end, length);
        if (c != U'.' && !isUnicodeNumeric(c)) break;
        end += length;
    }
    return message.substr(start, end - start);
}

RateDetection detection(double rate, std::optional<std::int64_t> depth, const char* source,
                        std::string_view message, WallTime date) {
    return RateDetection{rate, depth, std::nullopt, source, date, std::string(message)};
}

// The audio-capabilities message: "asbdSampleRate = 44.1 kHz", "sdBitDepth = 24 bit".
std::optional<RateDetection> audioCapabilities(std::string_view m, WallTime date) {
    if (!contains(m, "audioCapabilities")) return std::nullopt;
    const auto rateText = between(m, "asbdSampleRate = ", " kHz");
    if (!rateText) return std::nullopt;
    const auto rate = normalisedRate(trimSpacesAndTabs(*rateText));
    if (!rate) return std::nullopt;
    return detection(*rate, depthBetween(m, "sdBitDepth = ", " bit"), "Apple Music", m, date);
}

// The lossless decoder's input format: "2 ch, 96000 Hz", "from 24-bit source".
std::optional<RateDetection> losslessDecoder(std::string_view m, WallTime date) {
    if (!contains(m, "ACAppleLosslessDecoder") || !contains(m, "Input format")) return std::nullopt;
    const auto rateText = between(m, "ch, ", " Hz");
    if (!rateText) return std::nullopt;
    const auto rate = normalisedRate(trimSpacesAndTabs(*rateText));
    if (!rate) return std::nullopt;
    return detection(*rate, depthBetween(m, "from ", "-bit source"), "Lossless decoder", m, date);
}

// The audio queue's creation: "sampleRate:48000.0," with the number right after the colon.
std::optional<RateDetection> audioQueue(std::string_view m, WallTime date) {
    if (!contains(m, "Creating AudioQueue")) return std::nullopt;
    constexpr std::string_view marker = "sampleRate:";
    const std::size_t at = m.find(marker);
    if (at == std::string_view::npos) return std::nullopt;
    const auto rate = normalisedRate(numericRunAfter(m, at + marker.size()));
    if (!rate) return std::nullopt;
    return detection(*rate, std::nullopt, "AudioQueue", m, date);
}

// The track header journal's entry: "Track file header: rate = 96000 Hz, depth = 24 bit".
// Players outside macOS write no decoder messages, so the Linux adapter reads the track's file
// header instead and journals what it states in this shape of its own, tried after the Music
// app's three.
std::optional<RateDetection> trackFileHeader(std::string_view m, WallTime date) {
    if (!contains(m, TrackHeaderMessage::subject)) return std::nullopt;
    const auto rateText = between(m, TrackHeaderMessage::rateOpen, TrackHeaderMessage::rateClose);
    if (!rateText) return std::nullopt;
    const auto rate = normalisedRate(trimSpacesAndTabs(*rateText));
    if (!rate) return std::nullopt;
    return detection(*rate,
                     depthBetween(m, TrackHeaderMessage::depthOpen, TrackHeaderMessage::depthClose),
                     "File header", m, date);
}

}  // namespace

std::optional<RateDetection> parse(std::string_view message, WallTime date) {
    if (auto found = audioCapabilities(message, date)) return found;
    if (auto found = losslessDecoder(message, date)) return found;
    if (auto found = audioQueue(message, date)) return found;
    return trackFileHeader(message, date);
}

ScanOutcome scanRecentLogs(SystemLog& log, double secondsBack) {
    std::optional<RateDetection> best;
    const std::optional<std::string> error =
        log.enumerate(musicProcess, secondsBack, [&best](std::string_view message, WallTime date) {
            std::optional<RateDetection> found = parse(message, date);
            if (found && (!best || found->date >= best->date)) best = std::move(found);
        });
    if (error) {
        return ScanFailed{"Could not read the system log (" + *error + "). " +
                          "Your account must be an administrator."};
    }
    if (best) return ScanFound{std::move(*best)};
    return ScanNothing{};
}

}  // namespace corvanel::LogScanner
