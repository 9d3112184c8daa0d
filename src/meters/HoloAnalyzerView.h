#pragma once
// The Futuristic rack's spectrum: glowing neon bars whose colour runs from cyan at the floor to
// pink at the top, white peak caps, a dB grid and frequency labels on dark glass. Unlike the
// lava and storm spectra it applies no extra gain: a level of 1 reaches the 0 dB line.
#include "meters/BandAnalyzerView.h"

namespace corvanel::meters {

class HoloAnalyzerView final : public BandAnalyzerView {
  public:
    HoloAnalyzerView() : BandAnalyzerView(6.0) {}

    static constexpr double canvasInset = 11.0;

    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;
};

}  // namespace corvanel::meters
