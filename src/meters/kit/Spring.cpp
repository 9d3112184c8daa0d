#include "meters/kit/Spring.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace corvanel::meters {

namespace {
// Small fixed sub-steps keep the integration stable and independent of the display's frame rate.
constexpr double maximumSubstep = 1.0 / 480.0;
constexpr double restDistance = 1e-4;
constexpr double restSpeed = 1e-3;
}  // namespace

Spring::Spring(double response, double dampingFraction, double initial)
    : stiffness_(std::pow(2.0 * std::numbers::pi / response, 2.0)),
      damping_(4.0 * std::numbers::pi * dampingFraction / response),
      value_(initial),
      target_(initial) {}

void Spring::snapTo(double value) {
    value_ = value;
    target_ = value;
    velocity_ = 0.0;
}

void Spring::step(double dt) {
    if (!(dt > 0.0) || isSettled()) return;
    const int substeps = static_cast<int>(std::ceil(dt / maximumSubstep));
    const double h = dt / substeps;
    for (int i = 0; i < substeps; ++i) {
        // Semi-implicit Euler: velocity first, then position with the new velocity.
        const double force = -stiffness_ * (value_ - target_) - damping_ * velocity_;
        velocity_ += force * h;
        value_ += velocity_ * h;
    }
    if (isSettled()) snapTo(target_);
}

bool Spring::isSettled() const {
    return std::abs(value_ - target_) < restDistance && std::abs(velocity_) < restSpeed;
}

}  // namespace corvanel::meters
