#pragma once
// The renderers' only source of randomness: a pure integer hash of two numbers giving a value
// from -1 to 1 in steps of 0.001, so that every frame is a function of its inputs.
#include <cstdint>

namespace corvanel::meters {

double noise(std::int64_t a, std::int64_t b);

}  // namespace corvanel::meters
