#include "spectrum/LevelDynamics.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace corvanel::LevelDynamics {

namespace {

// A target that is not a number in 0 ... 1 comes from samples that were not numbers; the value
// holds rather than taking it on.
bool isLevel(float target) {
    return target >= 0.0f && target <= 1.0f;
}

}  // namespace

float smoothBand(float current, float target) {
    if (!isLevel(target)) return current;
    if (current < target) return current * 0.59f + target * 0.41f;
    return std::max(target, current - 0.05f);
}

float fallWithoutData(float current) {
    return std::max(current - 0.04f, 0.0f);
}

float meterBallistics(float current, float target) {
    if (!isLevel(target)) return current;
    const float coefficient = target > current ? 0.33f : 0.13f;
    return current + (target - current) * coefficient;
}

float vuFraction(float dbFS) {
    struct Point {
        float vu;
        float fraction;
    };
    static constexpr std::array<Point, 5> table = {
        {{-20.0f, 0.0f}, {-10.0f, 0.30f}, {-5.0f, 0.55f}, {0.0f, 0.78f}, {3.0f, 1.0f}}};
    const float vu = dbFS + 14.0f;  // 0 VU is −14 dBFS
    if (std::isnan(vu) || vu <= table.front().vu) return 0.0f;
    if (vu > table.back().vu) return 1.0f;
    for (std::size_t i = 1; i < table.size(); ++i) {
        if (table[i].vu >= vu) {
            const Point& from = table[i - 1];
            const Point& to = table[i];
            return from.fraction +
                   (vu - from.vu) * (to.fraction - from.fraction) / (to.vu - from.vu);
        }
    }
    return 1.0f;
}

}  // namespace corvanel::LevelDynamics
