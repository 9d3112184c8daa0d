#include "meters/styles/BandPlotView.h"

namespace corvanel::meters {

namespace {

BandPlot plotIn(const QSizeF& size, std::size_t bands) {
    const double inset = BandPlotView::canvasInset;
    return BandPlot(size - QSizeF(2 * inset, 2 * inset), bands);
}

}  // namespace

void BandPlotView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    if (levels_.empty()) return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(canvasInset, canvasInset);
    paintBands(painter, plotIn(size, levels_.size()));
    painter.restore();
}

void BandPlotView::paintBackground(QPainter& painter, const QSizeF& size) const {
    paintBackdrop(painter, size);
    if (layoutBands_ == 0) return;
    painter.translate(canvasInset, canvasInset);
    const BandPlot plot = plotIn(size, layoutBands_);
    const Scale scale = scaleFor(plot);
    drawBandScale(painter, plot, scale.grid, scale.lineColour, scale.labels);
}

}  // namespace corvanel::meters
