#pragma once
// A unit-mass spring described like the platform's spring animation: `response` is the period of
// the undamped oscillation in seconds and `dampingFraction` the ratio to critical damping (below 1
// overshoots). Setting a new target keeps the current position and velocity, so a swing in
// progress is retargeted from where it is. Stepping is deterministic for a given series of dt.
namespace corvanel::meters {

class Spring {
  public:
    Spring(double response, double dampingFraction, double initial = 0.0);

    void setTarget(double target) { target_ = target; }
    // Jumps to `value` at rest (no motion).
    void snapTo(double value);
    void settle() { snapTo(target_); }
    void step(double dt);

    double value() const { return value_; }
    double velocity() const { return velocity_; }
    double target() const { return target_; }
    bool isSettled() const;

  private:
    double stiffness_;
    double damping_;
    double value_;
    double velocity_ = 0.0;
    double target_;
};

}  // namespace corvanel::meters
