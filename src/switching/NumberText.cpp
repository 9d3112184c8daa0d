#include "switching/NumberText.h"

#include <charconv>

namespace corvanel {
namespace {
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
}  // namespace

std::optional<double> parseDecimal(std::string_view text) {
    // from_chars accepts no leading "+", which a decimal number may carry.
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && (text.front() == '-' || text.front() == '+')) return std::nullopt;
    }
    // Only digits and a point may start the number: no "inf", "nan" or hexadecimal forms.
    const std::string_view digits = text.substr(!text.empty() && text.front() == '-' ? 1 : 0);
    if (digits.empty() || !(isDigit(digits.front()) || digits.front() == '.')) return std::nullopt;
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, std::chars_format::general);
    if (error != std::errc{} || stop != end) return std::nullopt;
    return value;
}

std::optional<std::int64_t> parsePlainInteger(std::string_view text) {
    bool negative = false;
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    if (text.empty()) return std::nullopt;
    std::uint64_t magnitude = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, magnitude);
    if (error != std::errc{} || stop != end) return std::nullopt;
    constexpr std::uint64_t maxPositive = static_cast<std::uint64_t>(INT64_MAX);
    if (!negative && magnitude > maxPositive) return std::nullopt;
    if (negative && magnitude > maxPositive + 1) return std::nullopt;
    if (negative) return static_cast<std::int64_t>(0 - magnitude);
    return static_cast<std::int64_t>(magnitude);
}

std::string_view trimSpacesAndTabs(std::string_view text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

}  // namespace corvanel
