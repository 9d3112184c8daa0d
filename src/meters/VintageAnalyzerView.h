#pragma once
// The Vintage console's spectrum: black bars on a back-lit amber face that turn red above the
// reference line at 0.82, with peak markers, a dB scale and frequency labels under glass.
#include <vector>

#include "meters/MeterRenderer.h"
#include "meters/StaticLayer.h"

namespace corvanel::meters {

class VintageAnalyzerView final : public MeterRenderer {
  public:
    static constexpr double canvasInset = 11.0;
    static constexpr double redLine = 0.82;

    void setValues(const MeterValues& values) override;
    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;

    std::vector<float> levels_;
    std::vector<float> peaks_;
    std::size_t layoutBands_ = 0;  // band count the background was drawn for
    StaticLayer background_{8.0};
    StaticLayer glass_;
};

}  // namespace corvanel::meters
