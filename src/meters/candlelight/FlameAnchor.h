#pragma once
// One candle wick of the visualizer: its fixed place in the room picture, the scale of its flame
// and the analyzer band that drives it.
#include <cstddef>
#include <vector>

namespace corvanel::meters {

struct FlameAnchor {
    int index = 0;    // position in the wick table
    double x = 0;     // fraction of the drawn picture's width
    double y = 0;     // fraction of the drawn picture's height
    double size = 0;  // flame scale, fraction of the drawn picture's height
    int band = 0;     // analyzer band that drives the flame
};

// One anchor per wick, in wick order. Far (high) wicks get small flames and near ones large;
// the largest flame follows the lowest of `bandCount` bands and the smallest the highest.
std::vector<FlameAnchor> buildFlameAnchors(std::size_t bandCount);

}  // namespace corvanel::meters
