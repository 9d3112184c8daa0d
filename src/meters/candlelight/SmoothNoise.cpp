#include "meters/candlelight/SmoothNoise.h"

#include <cmath>

#include "meters/kit/Noise.h"

namespace corvanel::meters {

namespace {

double smoothstep(double t) {
    return t * t * (3.0 - 2.0 * t);
}

double lattice(std::int64_t x, std::int64_t y, std::int64_t seed) {
    // A large odd multiplier keeps the seeds' lattices apart.
    return noise(x + seed * 1000003, y);
}

}  // namespace

double smoothNoise(double x, double y, std::int64_t seed) {
    const double fx = std::floor(x);
    const double fy = std::floor(y);
    const auto ix = static_cast<std::int64_t>(fx);
    const auto iy = static_cast<std::int64_t>(fy);
    const double tx = smoothstep(x - fx);
    const double ty = smoothstep(y - fy);
    const double top = lattice(ix, iy, seed) * (1 - tx) + lattice(ix + 1, iy, seed) * tx;
    const double bottom = lattice(ix, iy + 1, seed) * (1 - tx) + lattice(ix + 1, iy + 1, seed) * tx;
    return top * (1 - ty) + bottom * ty;
}

double fractalNoise(double x, double y, int octaves, std::int64_t seed) {
    double sum = 0;
    double weight = 0;
    double amplitude = 1;
    double frequency = 1;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += amplitude * smoothNoise(x * frequency, y * frequency, seed + octave);
        weight += amplitude;
        amplitude *= 0.5;
        frequency *= 2.0;
    }
    return weight > 0 ? sum / weight : 0.0;
}

}  // namespace corvanel::meters
