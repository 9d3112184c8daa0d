#pragma once
// The Unicode "numeric" character property, which the audio-queue log recogniser uses to find
// where a rate text ends, and the UTF-8 decoding that reads the characters it is asked about.
#include <cstddef>
#include <string_view>

namespace corvanel {

// The code point whose UTF-8 form starts at `at` (which must be inside `text`), and in `length`
// the number of its bytes. A malformed form reads as U+FFFD of length 1: a stray or missing
// continuation byte, a form cut off by the end of the text, an overlong form (such as C0 B1 for
// "1"), a surrogate or a value above U+10FFFF.
char32_t decodeUtf8(std::string_view text, std::size_t at, std::size_t& length);

// Whether the code point has a numeric type (digits, other-script digits, fractions, numerals).
bool isUnicodeNumeric(char32_t codePoint);

}  // namespace corvanel
