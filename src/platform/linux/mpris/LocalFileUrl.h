#pragma once
// Players name the playing track's file by a file URL (xesam:url); the file name behind it is
// a byte string that need not be UTF-8, so it is decoded to bytes, never through a text type.
#include <optional>
#include <string>
#include <string_view>

namespace corvanel {

// The local path a "file://" URL names, percent-decoded; nothing for another scheme, a remote
// host, a relative or empty path, a malformed escape, or an escaped NUL.
std::optional<std::string> localPathOfUrl(std::string_view url);

}  // namespace corvanel
