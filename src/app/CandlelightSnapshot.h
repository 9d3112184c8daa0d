#pragma once
// One still frame of the candle-light visualizer for the given levels and time (seconds since
// 2001-01-01 UTC), drawn over black into an image of `size` points at `scale` pixels per point.
#include <QImage>
#include <QSizeF>
#include <vector>

namespace corvanel {

QImage renderCandlelightSnapshot(const std::vector<float>& levels, double time, const QSizeF& size,
                                 double scale);

}  // namespace corvanel
