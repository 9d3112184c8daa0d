#pragma once
// Antialiased polylines with round caps and joins for the meters' long wandering lines (jets,
// charges, bolts, spokes). QPainter strokes a line by building the outline of every join and cap
// and rasterising it, some 25 microseconds for a line down the analyzer. These lines run one way
// along an axis, so each row (or column) meets them in one short run of pixels: the run's
// coverage follows from each pixel's distance to the nearest segment, which also covers the
// joins once, exactly like the union a round-joined pen paints.
#include <QColor>
#include <QLinearGradient>
#include <QPainter>
#include <QPolygonF>
#include <variant>

namespace corvanel::meters {

// What a stroke is painted with: one colour, or a linear gradient (padded at its ends) laid out
// in the painter's coordinates like a QLinearGradient brush.
using StrokePaint = std::variant<QColor, QLinearGradient>;

// Strokes `points`, `width` points wide, source-over onto `painter` as drawPolyline with a
// round-capped, round-joined pen would. Lines that run one way along x or y, drawn by an opaque
// painter on a premultiplied ARGB image under a plain scale and translation, and clipped (if at
// all) by a clip that holds them whole, are rasterised here; anything else gets QPainter's own
// stroke.
void drawRoundStroke(QPainter& painter, const QPolygonF& points, double width,
                     const StrokePaint& paint);

}  // namespace corvanel::meters
