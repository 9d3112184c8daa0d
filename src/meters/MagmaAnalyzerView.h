#pragma once
// The Inferno style's spectrum: one jet of lava per band rising from a glowing floor, with a dB
// grid, peak sparks and frequency labels on the rock backdrop. Stateless: a jet changes shape
// only when its shown height crosses a 1/20 step.
#include <vector>

#include "meters/MeterRenderer.h"
#include "meters/StaticLayer.h"

namespace corvanel::meters {

class MagmaAnalyzerView final : public MeterRenderer {
  public:
    static constexpr double canvasInset = 11.0;

    void setValues(const MeterValues& values) override;
    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;

    std::vector<float> levels_;
    std::vector<float> peaks_;
    std::size_t layoutBands_ = 0;  // band count the background was drawn for
    StaticLayer background_;
};

}  // namespace corvanel::meters
