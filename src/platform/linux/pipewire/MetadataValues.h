#pragma once
// Reading the metadata values Corvanel follows: a default node as the session manager writes it
// ({"name": "..."}), whole numbers ("96000") and rate lists ("[ 44100, 48000 ]").
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvanel::pipewire {

// The node name of a default-node value; absent when the value names no node.
std::optional<std::string> defaultNodeName(std::string_view json);
// A whole number that fits 32 bits unsigned; absent otherwise.
std::optional<std::uint32_t> wholeNumber(std::string_view text);
// The positive whole numbers of a JSON array; empty when it is none.
std::vector<std::uint32_t> numberList(std::string_view json);

}  // namespace corvanel::pipewire
