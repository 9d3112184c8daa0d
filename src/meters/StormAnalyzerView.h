#pragma once
// The Valhalla style's spectrum: one lightning stroke per band hanging from the top of the plot,
// reaching further down the louder the band, whitening as it reaches down; with a dB grid, peak
// sparks and frequency labels on the storm backdrop. Stateless: a stroke changes shape only when
// its shown length crosses a 1/20 step.
#include "meters/BandAnalyzerView.h"

namespace corvanel::meters {

class StormAnalyzerView final : public BandAnalyzerView {
  public:
    static constexpr double canvasInset = 11.0;

    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;
};

}  // namespace corvanel::meters
