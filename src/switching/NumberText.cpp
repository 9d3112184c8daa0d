#include "switching/NumberText.h"

#include <locale.h>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <string>
#if defined(__APPLE__)
#include <xlocale.h>
#endif

namespace corvanel {
namespace {
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t skipDigits(std::string_view text, std::size_t at) {
    while (at < text.size() && isDigit(text[at]))
        ++at;
    return at;
}

// Digits with an optional point and fraction, then an optional exponent, after an optional
// sign: no "inf", "nan", hexadecimal forms or spaces.
bool isDecimalNumber(std::string_view text) {
    std::size_t at = !text.empty() && (text.front() == '+' || text.front() == '-') ? 1 : 0;
    const std::size_t integerEnd = skipDigits(text, at);
    std::size_t mantissaDigits = integerEnd - at;
    at = integerEnd;
    if (at < text.size() && text[at] == '.') {
        const std::size_t fractionEnd = skipDigits(text, at + 1);
        mantissaDigits += fractionEnd - (at + 1);
        at = fractionEnd;
    }
    if (mantissaDigits == 0) return false;
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
        const std::size_t exponentEnd = skipDigits(text, at);
        if (exponentEnd == at) return false;
        at = exponentEnd;
    }
    return at == text.size();
}

// The C locale, so that a user's decimal comma never changes how a number is read. Apple's
// libc++ has no floating-point from_chars; strtod_l with this locale is exact on both systems.
// Never freed: a log scan that is still reading on its own thread when the application exits
// parses numbers after static destructors have run.
locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", locale_t{});
    return locale;
}
}  // namespace

std::optional<double> parseDecimal(std::string_view text) {
    if (!isDecimalNumber(text)) return std::nullopt;
    const std::string terminated(text);
    char* stop = nullptr;
    errno = 0;
    const double value = strtod_l(terminated.c_str(), &stop, cLocale());
    if (errno == ERANGE || stop != terminated.c_str() + terminated.size()) return std::nullopt;
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
