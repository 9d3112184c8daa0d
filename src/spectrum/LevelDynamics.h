#pragma once
// How the published values move from tick to tick: band smoothing (quick rise, limited fall),
// the fall without data, VU-meter ballistics for the channels, and the VU scale itself.
namespace corvanel::LevelDynamics {

// Rising: 41 % of the way to the target per tick; steady or falling: at most 0.05 per tick.
float smoothBand(float current, float target);
// No block to analyse: a plain fall of 0.04 per tick, down to 0.
float fallWithoutData(float current);
// Rises with a factor of 0.33 per tick and falls with 0.13: climbs faster than it drops.
float meterBallistics(float current, float target);
// dBFS to a 0...1 fraction of a VU scale whose 0 VU is −14 dBFS (−20 VU is 0, +3 VU is 1).
float vuFraction(float dbFS);

}  // namespace corvanel::LevelDynamics
