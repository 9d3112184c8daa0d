#pragma once
// The frame of the themed spectra drawn on a BandPlot (lava, storm, neon): a backdrop with the
// plot's printed scale, cached, and the style's moving parts over the plot canvas.
#include <QColor>
#include <vector>

#include "meters/kit/TextPlacement.h"
#include "meters/styles/BandAnalyzerView.h"
#include "meters/styles/BandPlot.h"

namespace corvanel::meters {

class BandPlotView : public BandAnalyzerView {
  public:
    static constexpr double canvasInset = 11.0;

    // The cached background, then, when there are bands, the style's moving parts.
    void paint(QPainter& painter, const QSizeF& size) final;

  protected:
    using BandAnalyzerView::BandAnalyzerView;

    // A style's printed scale: its dB grid on the plot, the grid's line colour and the labels'
    // style.
    struct Scale {
        std::vector<GridLine> grid;
        QColor lineColour;
        TextStyle labels;
    };

    // The style's backdrop over the whole area.
    virtual void paintBackdrop(QPainter& painter, const QSizeF& size) const = 0;
    virtual Scale scaleFor(const BandPlot& plot) const = 0;
    // The moving parts, antialiased, with the origin at the plot canvas's corner; the painter's
    // state is restored afterwards.
    virtual void paintBands(QPainter& painter, const BandPlot& plot) = 0;

  private:
    void paintBackground(QPainter& painter, const QSizeF& size) const;
};

}  // namespace corvanel::meters
