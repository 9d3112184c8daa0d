#pragma once
// A meter style's renderer. It is given the analyzer's values as they are published, advances its
// moving parts (springs) by the frame clock, and paints one frame into a painter whose origin is
// the top-left of the area it owns, `size` points large. Renderers never see samples or decibels.
#include <QPainter>
#include <QSizeF>

#include "meters/kit/MeterValues.h"

namespace corvanel::meters {

class MeterRenderer {
  public:
    virtual ~MeterRenderer() = default;

    // New published values; running springs are retargeted from where they are.
    virtual void setValues(const MeterValues& values) = 0;

    // Advances motion by dt seconds. Returns true while something is still moving, so the frame
    // clock can stop when everything is at rest.
    virtual bool step(double dt) {
        (void)dt;
        return false;
    }

    // Puts every moving part at rest on its target (one still frame, e.g. rendered headless).
    virtual void settle() {}

    virtual void paint(QPainter& painter, const QSizeF& size) = 0;

  protected:
    MeterRenderer() = default;
    MeterRenderer(const MeterRenderer&) = default;
    MeterRenderer& operator=(const MeterRenderer&) = default;
};

}  // namespace corvanel::meters
