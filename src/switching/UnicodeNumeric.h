#pragma once
// The Unicode "numeric" character property, which the audio-queue log recogniser uses to find
// where a rate text ends.

namespace corvanel {

// Whether the code point has a numeric type (digits, other-script digits, fractions, numerals).
bool isUnicodeNumeric(char32_t codePoint);

}  // namespace corvanel
