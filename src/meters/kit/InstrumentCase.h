#pragma once
// The case most instruments share: a bezel with a drop shadow, an inset face, and a glass sheen
// drawn over everything. Each is a continuous rounded rectangle filling the box less an inset.
#include <QColor>
#include <QPainter>
#include <QRectF>

#include "meters/kit/LayerEffects.h"

namespace corvanel::meters {

struct VerticalGradient {
    QColor top;
    QColor bottom;
};

void fillVertical(QPainter& painter, const QRectF& rect, double cornerRadius,
                  const VerticalGradient& gradient);

// Bezel filling `rect` with its shadow.
void drawBezel(QPainter& painter, const QRectF& rect, double cornerRadius,
               const VerticalGradient& gradient, const Shadow& shadow);

// Glass: a gradient from the top-left corner to the bottom centre through white at
// `topOpacity`, white at `middleOpacity` and transparent.
void drawGlass(QPainter& painter, const QRectF& rect, double cornerRadius, double topOpacity,
               double middleOpacity);

}  // namespace corvanel::meters
