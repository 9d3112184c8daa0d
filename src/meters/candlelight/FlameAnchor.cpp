#include "meters/candlelight/FlameAnchor.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "meters/candlelight/CandleRoomLayout.h"

namespace corvanel::meters {

std::vector<FlameAnchor> buildFlameAnchors(std::size_t bandCount) {
    const auto& wicks = candleWicks();
    std::vector<FlameAnchor> anchors(wicks.size());
    for (std::size_t i = 0; i < wicks.size(); ++i) {
        const double depth = std::clamp((wicks[i].y() - 0.1) / 0.75, 0.0, 1.0);
        anchors[i] = {static_cast<int>(i), wicks[i].x(), wicks[i].y(),
                      0.014 + 0.026 * std::pow(depth, 1.4), 0};
    }

    std::vector<std::size_t> order(anchors.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        if (anchors[a].size != anchors[b].size) return anchors[a].size > anchors[b].size;
        return anchors[a].y > anchors[b].y;
    });

    const double lastBand = bandCount > 0 ? static_cast<double>(bandCount - 1) : 0.0;
    const double lastPosition = static_cast<double>(order.size() - 1);
    for (std::size_t j = 0; j < order.size(); ++j) {
        anchors[order[j]].band =
            static_cast<int>(std::trunc(lastBand * static_cast<double>(j) / lastPosition));
    }
    return anchors;
}

}  // namespace corvanel::meters
