#include "switching/RateLabels.h"

#include <charconv>
#include <cmath>

namespace corvanel {
namespace {

constexpr const char* separator = " \u00B7 ";

std::string ratePart(double rate) {
    return formatRate(rate) + " kHz";
}

std::string depthPart(std::int64_t depth) {
    return std::to_string(depth) + "-bit";
}

std::string bitRatePart(std::int64_t kbps) {
    return std::to_string(kbps) + " kbps";
}

// The detection's depth, else its bit rate, preceded by the separator; empty when it has neither.
std::string detailPart(const std::optional<RateDetection>& detection) {
    if (!detection) return {};
    if (detection->bitDepth) return separator + depthPart(*detection->bitDepth);
    if (detection->bitRateKbps) return separator + bitRatePart(*detection->bitRateKbps);
    return {};
}

}  // namespace

std::string formatRate(double rate) {
    const double k = rate / 1000.0;
    const double whole = std::round(k);
    if (k != whole) {
        // to_chars ignores the user's locale: the separator is always a full stop.
        char text[400];
        const auto [end, error] =
            std::to_chars(text, text + sizeof text, k, std::chars_format::fixed, 1);
        if (error != std::errc{}) return "0";
        return std::string(text, end);
    }
    if (!std::isfinite(whole) || std::fabs(whole) > 1e15) return "0";
    return std::to_string(static_cast<std::int64_t>(whole));
}

std::string detectedText(const std::optional<RateDetection>& detection) {
    if (!detection) return "\u2014";
    return ratePart(detection->sampleRate) + detailPart(detection);
}

std::string deviceText(double deviceRate, std::uint32_t deviceBitDepth) {
    if (!(deviceRate > 0)) return "\u2014";
    std::string text = ratePart(deviceRate);
    if (deviceBitDepth != 0) text += separator + depthPart(deviceBitDepth);
    return text;
}

std::string menuBarTitle(double deviceRate, const std::optional<RateDetection>& detection) {
    if (!(deviceRate > 0)) return "\u2013";
    return ratePart(deviceRate) + detailPart(detection);
}

}  // namespace corvanel
