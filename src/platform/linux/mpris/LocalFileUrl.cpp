#include "platform/linux/mpris/LocalFileUrl.h"

#include <algorithm>

namespace corvanel {
namespace {

std::optional<int> hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return std::nullopt;
}

bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(), [](char a, char b) {
               const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
               return lower(a) == lower(b);
           });
}

}  // namespace

std::optional<std::string> localPathOfUrl(std::string_view url) {
    constexpr std::string_view scheme = "file://";
    if (!startsWithIgnoringCase(url, scheme)) return std::nullopt;
    url.remove_prefix(scheme.size());
    // A query or a fragment is no part of the path (a file name's own '?' and '#' are escaped).
    url = url.substr(0, url.find_first_of("?#"));
    const std::size_t pathStart = url.find('/');
    if (pathStart == std::string_view::npos) return std::nullopt;
    const std::string_view host = url.substr(0, pathStart);
    constexpr std::string_view thisHost = "localhost";
    if (!host.empty() &&
        !(host.size() == thisHost.size() && startsWithIgnoringCase(host, thisHost)))
        return std::nullopt;

    const std::string_view encoded = url.substr(pathStart);
    std::string path;
    path.reserve(encoded.size());
    for (std::size_t at = 0; at < encoded.size(); ++at) {
        if (encoded[at] != '%') {
            path.push_back(encoded[at]);
            continue;
        }
        if (at + 2 >= encoded.size()) return std::nullopt;
        const auto high = hexValue(encoded[at + 1]);
        const auto low = hexValue(encoded[at + 2]);
        if (!high || !low || (*high == 0 && *low == 0)) return std::nullopt;
        path.push_back(static_cast<char>(*high * 16 + *low));
        at += 2;
    }
    return path;
}

}  // namespace corvanel
