#pragma once
// The Futuristic rack's spectrum: glowing neon bars whose colour runs from cyan at the floor to
// pink at the top, white peak caps, a dB grid and frequency labels on dark glass. Unlike the
// lava and storm spectra it applies no extra gain: a level of 1 reaches the 0 dB line.
#include "meters/styles/BandPlotView.h"

namespace corvanel::meters {

class HoloAnalyzerView final : public BandPlotView {
  public:
    HoloAnalyzerView() : BandPlotView(6.0) {}

  private:
    void paintBackdrop(QPainter& painter, const QSizeF& size) const override;
    Scale scaleFor(const BandPlot& plot) const override;
    void paintBands(QPainter& painter, const BandPlot& plot) override;
};

}  // namespace corvanel::meters
