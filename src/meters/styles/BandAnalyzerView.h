#pragma once
// What the themed spectrum renderers share: the latest levels and peaks, and a cached
// background (backdrop, grid, labels) that is redrawn only when the size, the pixel ratio or
// the number of bands changes.
#include <cstddef>
#include <vector>

#include "meters/kit/MeterRenderer.h"
#include "meters/kit/StaticLayer.h"

namespace corvanel::meters {

class BandAnalyzerView : public MeterRenderer {
  public:
    void setValues(const MeterValues& values) override;

  protected:
    // backgroundMargin: how far the background's shadows and glows reach outside the area.
    explicit BandAnalyzerView(double backgroundMargin = 0.0) : background_(backgroundMargin) {}

    std::vector<float> levels_;
    std::vector<float> peaks_;
    std::size_t layoutBands_ = 0;  // band count the background was drawn for
    StaticLayer background_;
};

}  // namespace corvanel::meters
