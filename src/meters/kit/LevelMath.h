#pragma once
// Turning published levels into what a meter shows: clamping (not-a-number counts as 0) and
// counting lit segments with halves rounded away from zero.
#include <algorithm>
#include <cmath>

namespace corvanel::meters {

inline double clampedLevel(double level) {
    if (std::isnan(level)) return 0.0;
    return std::clamp(level, 0.0, 1.0);
}

// round(clamp(level) x count); a huge or infinite level lights them all, never more.
inline int litSegments(double level, int count) {
    return static_cast<int>(std::lround(clampedLevel(level) * count));
}

// Pairwise reduction used by the label image and the boombox: column j is the larger of bands
// 2j and min(2j + 1, n - 1).
template <typename Values>
Values pairwiseMaxima(const Values& levels) {
    Values columns;
    const std::size_t n = levels.size();
    for (std::size_t i = 0; i < n; i += 2)
        columns.push_back(std::max(levels[i], levels[std::min(i + 1, n - 1)]));
    return columns;
}

}  // namespace corvanel::meters
