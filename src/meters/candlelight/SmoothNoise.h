#pragma once
// Smooth, continuous noise fields built on the integer noise function, for painted textures
// (plaster, wood grain). Pure functions: the same point always gives the same value.
#include <cstdint>

namespace corvanel::meters {

// Value noise from -1 to 1, interpolated smoothly between the integer lattice points.
double smoothNoise(double x, double y, std::int64_t seed);

// Several octaves of smoothNoise, each twice as fine and half as strong; from about -1 to 1.
double fractalNoise(double x, double y, int octaves, std::int64_t seed);

}  // namespace corvanel::meters
