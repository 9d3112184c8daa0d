#include "meters/styles/SpringNeedleMeter.h"

#include "meters/kit/LevelMath.h"

namespace corvanel::meters {

void SpringNeedleMeter::setLevel(float level) {
    needleLevel_.setTarget(clampedLevel(level));
}

bool SpringNeedleMeter::step(double dt) {
    needleLevel_.step(dt);
    return !needleLevel_.isSettled();
}

void SpringNeedleMeter::settle() {
    needleLevel_.settle();
}

}  // namespace corvanel::meters
