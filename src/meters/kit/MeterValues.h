#pragma once
// The analyzer's published values as the renderers see them: band levels and peaks (0 to 1 each,
// low bands first) and the two channel levels on the VU scale (0.78 = 0 VU).
#include <vector>

namespace corvanel::meters {

struct MeterValues {
    std::vector<float> levels;
    std::vector<float> peaks;
    float left = 0.0f;
    float right = 0.0f;
};

}  // namespace corvanel::meters
