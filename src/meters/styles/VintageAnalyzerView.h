#pragma once
// The Vintage console's spectrum: black bars on a back-lit amber face that turn red above the
// reference line at 0.82, with peak markers, a dB scale and frequency labels under glass.
#include "meters/kit/StaticLayer.h"
#include "meters/styles/BandAnalyzerView.h"

namespace corvanel::meters {

class VintageAnalyzerView final : public BandAnalyzerView {
  public:
    VintageAnalyzerView() : BandAnalyzerView(8.0) {}

    static constexpr double canvasInset = 11.0;
    static constexpr double redLine = 0.82;

    void paint(QPainter& painter, const QSizeF& size) override;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;

    StaticLayer glass_;
};

}  // namespace corvanel::meters
