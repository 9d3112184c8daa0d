#pragma once
// Strict number parsing for texts that come from outside (log messages, script replies): the
// whole text must be the number, in the C locale.
#include <cstdint>
#include <optional>
#include <string_view>

namespace corvanel {

// A decimal floating-point number (digits, optional fraction and exponent, optional sign).
std::optional<double> parseDecimal(std::string_view text);

// An optional leading "+" or "-", then digits only.
std::optional<std::int64_t> parsePlainInteger(std::string_view text);

// The text without leading and trailing spaces and tabs (line breaks stay).
std::string_view trimSpacesAndTabs(std::string_view text);

}  // namespace corvanel
