#pragma once
// The Futuristic rack's spectrum: glowing neon bars whose colour runs from cyan at the floor to
// pink at the top, white peak caps, a dB grid and frequency labels on dark glass. Unlike the
// lava and storm spectra it applies no extra gain: a level of 1 reaches the 0 dB line.
#include <vector>

#include "meters/MeterRenderer.h"
#include "meters/StaticLayer.h"

namespace corvanel::meters {

class HoloAnalyzerView final : public MeterRenderer {
  public:
    static constexpr double canvasInset = 11.0;

    void setValues(const MeterValues& values) override;
    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;

    std::vector<float> levels_;
    std::vector<float> peaks_;
    std::size_t layoutBands_ = 0;  // band count the background was drawn for
    StaticLayer background_{6.0};
};

}  // namespace corvanel::meters
