#pragma once
// Whole-factor resampling for the layer effects: a wide blur runs on a copy shrunk by 2 or 4,
// and its result is stretched back to the layer's pixels before it is composited, which is far
// cheaper than letting QPainter resample while it blends.
#include <QImage>

namespace corvanel::meters {

// `coverage` becomes the alpha of `layer` (ARGB32 premultiplied) shrunk by `factor` (2 or 4) as
// Format_Alpha8: each pixel the mean of a factor x factor block, pixels past the edge counting
// as transparent. Left null when there is no memory for it.
void shrinkCoverage(const QImage& layer, int factor, QImage& coverage);

// `target` becomes `reduced` (ARGB32 premultiplied) stretched `factor` (2 or 4) times, each
// pixel interpolated bilinearly between the nearest pixel centres, edges held. Left null when
// there is no memory for it.
void enlarge(const QImage& reduced, int factor, QImage& target);

}  // namespace corvanel::meters
