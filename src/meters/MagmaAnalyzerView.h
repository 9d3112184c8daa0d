#pragma once
// The Inferno style's spectrum: one jet of lava per band rising from a glowing floor, with a dB
// grid, peak sparks and frequency labels on the rock backdrop. Stateless: a jet changes shape
// only when its shown height crosses a 1/20 step.
#include "meters/BandAnalyzerView.h"

namespace corvanel::meters {

class MagmaAnalyzerView final : public BandAnalyzerView {
  public:
    static constexpr double canvasInset = 11.0;

    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;
};

}  // namespace corvanel::meters
