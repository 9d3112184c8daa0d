#pragma once
// The Inferno style's spectrum: one jet of lava per band rising from a glowing floor, with a dB
// grid, peak sparks and frequency labels on the rock backdrop. Stateless: a jet changes shape
// only when its shown height crosses a 1/20 step.
#include "meters/styles/BandPlotView.h"

namespace corvanel::meters {

class MagmaAnalyzerView final : public BandPlotView {
  private:
    void paintBackdrop(QPainter& painter, const QSizeF& size) const override;
    Scale scaleFor(const BandPlot& plot) const override;
    void paintBands(QPainter& painter, const BandPlot& plot) override;
};

}  // namespace corvanel::meters
