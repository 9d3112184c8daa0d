#pragma once
// A meter needle: a capsule standing on a pivot, rotated about its bottom end, optionally with a
// soft shadow. The shadowed needle is prepared once as an image per length and pixel scale, so a
// frame only draws it rotated.
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPointF>

#include "meters/kit/LayerEffects.h"

namespace corvanel::meters {

struct NeedleShape {
    double width = 2.0;
    double length = 0.0;
    QColor colour;
    Shadow shadow;  // a shadow with opacity 0 draws none
};

class Needle {
  public:
    // Draws the needle with its bottom end on `pivot`, turned `degrees` clockwise from upright.
    void draw(QPainter& painter, const NeedleShape& shape, QPointF pivot, double degrees);

  private:
    QImage sprite_;
    NeedleShape spriteShape_;
    double spriteScale_ = 0.0;
    double spriteMargin_ = 0.0;
};

}  // namespace corvanel::meters
