#pragma once
// The "Spectrum analyzer" style: one column of 24 LED segments per band, lit from the bottom by
// the band's level, with an orange peak-hold segment, a dB scale and octave labels, on a dark
// glass-covered face. Stateless: each frame comes from the current levels and peaks.
#include <vector>

#include "meters/kit/MeterRenderer.h"
#include "meters/kit/StaticLayer.h"

namespace corvanel::meters {

class LEDSpectrumView final : public MeterRenderer {
  public:
    static constexpr int segmentCount = 24;
    static constexpr double segmentGap = 1.5;
    static constexpr double columnGap = 2.0;
    static constexpr double scaleMargin = 20.0;
    static constexpr double labelBand = 13.0;
    static constexpr double canvasInset = 11.0;
    static constexpr double minimumPeak = 0.04;

    void setValues(const MeterValues& values) override;
    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;
    void paintLadders(QPainter& painter, const QSizeF& size, bool peakColour) const;

    std::vector<float> levels_;
    std::vector<float> peaks_;
    std::size_t layoutBands_ = 0;  // band count the cached layers were drawn for
    StaticLayer background_{8.0};
    StaticLayer lit_;
    StaticLayer peak_;
    StaticLayer glass_;
};

}  // namespace corvanel::meters
