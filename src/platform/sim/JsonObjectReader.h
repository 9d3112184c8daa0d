#pragma once
// A small, strict reader for one JSON object per line (NDJSON), enough for exported system logs:
// it keeps the object's top-level members whose values are strings, numbers, booleans or null,
// and checks and skips nested objects and arrays. Bad input is reported, never thrown.
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <variant>

namespace corvanel {

using JsonScalar = std::variant<std::nullptr_t, bool, double, std::string>;

struct JsonObject {
    // Top-level members with scalar values; for a repeated name the last one counts.
    std::map<std::string, JsonScalar, std::less<>> scalars;

    // The member's text, or nullptr when it is absent or not a string.
    const std::string* text(std::string_view name) const;
};

struct JsonError {
    std::size_t offset = 0;  // byte offset in the line where reading stopped
    std::string reason;
};

// Reads `line` as exactly one JSON object (surrounding whitespace allowed).
std::variant<JsonObject, JsonError> readJsonObject(std::string_view line);

}  // namespace corvanel
