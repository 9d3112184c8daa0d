#pragma once
// The Valhalla style's spectrum: one lightning stroke per band hanging from the top of the plot,
// reaching further down the louder the band, whitening as it reaches down; with a dB grid, peak
// sparks and frequency labels on the storm backdrop. Stateless: a stroke changes shape only when
// its shown length crosses a 1/20 step.
#include "meters/styles/BandPlotView.h"

namespace corvanel::meters {

class StormAnalyzerView final : public BandPlotView {
  private:
    void paintBackdrop(QPainter& painter, const QSizeF& size) const override;
    Scale scaleFor(const BandPlot& plot) const override;
    void paintBands(QPainter& painter, const BandPlot& plot) override;
};

}  // namespace corvanel::meters
