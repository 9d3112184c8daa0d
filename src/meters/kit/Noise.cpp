#include "meters/kit/Noise.h"

namespace corvanel::meters {

double noise(std::int64_t a, std::int64_t b) {
    // Unsigned arithmetic gives the wrapping behaviour the hash relies on without signed overflow.
    std::uint64_t z = static_cast<std::uint64_t>(a) * 73856093u +
                      static_cast<std::uint64_t>(b) * 19349663u + 0x9E3779B97F4A7C15u;
    z ^= z >> 33;
    z *= 0xFF51AFD7ED558CCDu;
    z ^= z >> 33;
    return static_cast<double>(z % 2001u) / 1000.0 - 1.0;
}

}  // namespace corvanel::meters
