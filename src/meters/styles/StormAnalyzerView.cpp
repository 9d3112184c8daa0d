#include "meters/styles/StormAnalyzerView.h"

#include <QLinearGradient>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <vector>

#include "meters/kit/LayerEffects.h"
#include "meters/kit/Noise.h"
#include "meters/kit/RoundStroke.h"
#include "meters/kit/SystemFonts.h"
#include "meters/styles/BandPlot.h"
#include "meters/styles/Storm.h"
#include "meters/styles/StormBackdrop.h"

namespace corvanel::meters {

namespace {

TextStyle labelStyle() {
    return {systemFont(7, FontWeight::medium, FontDesign::monospaced), Storm::silver(0.55)};
}

}  // namespace

void StormAnalyzerView::paintBackdrop(QPainter& painter, const QSizeF& size) const {
    StormBackdrop::paint(painter, size);
}

BandPlotView::Scale StormAnalyzerView::scaleFor(const BandPlot& plot) const {
    // The plot hangs from the top: -60 dB lies on the top edge.
    std::vector<GridLine> grid;
    for (const int d : {-20, -40, -60})
        grid.push_back({d, plot.plotHeight * 1.3 * (d + 60) / 60.0});
    return {grid, Storm::silver(0.06), labelStyle()};
}

void StormAnalyzerView::paintBands(QPainter& painter, const BandPlot& plot) {
    const std::size_t n = plot.bands;
    const double P = plot.plotHeight;

    // The glow layer only needs to reach as far down as the longest stroke.
    double longest = 0;
    for (const float v : levels_)
        longest = std::max(longest, boostedFraction(v));
    drawWithGlow(painter, QRectF(0, 0, plot.canvas.width(), P * longest + 3), Storm::electric(0.6),
                 3.5, [&](QPainter& layer) {
                     QLinearGradient charge(QPointF(0, 0), QPointF(0, P));
                     charge.setColorAt(0.0, rgb(0.35, 0.45, 0.65, 0.85));
                     charge.setColorAt(0.5, Storm::electric());
                     charge.setColorAt(1.0, Qt::white);
                     const double sway = std::min(0.8 * plot.barWidth, 5.0);
                     for (std::size_t i = 0; i < n; ++i) {
                         const double F = boostedFraction(levels_[i]);
                         const double J = P * F;
                         if (J <= 2) continue;
                         const std::int64_t key = static_cast<std::int64_t>(std::trunc(20 * F)) +
                                                  31 * static_cast<std::int64_t>(i);
                         const double x = plot.centre(i);
                         const double tipX = x + 0.4 * plot.barWidth * noise(key, 90);
                         QPolygonF stroke{QPointF(x, 0)};
                         for (int j = 1; j <= 4; ++j) {
                             const double t = 0.2 * j;
                             stroke << QPointF(x + (tipX - x) * t + sway * noise(key, j), J * t);
                         }
                         stroke << QPointF(tipX, J);
                         drawRoundStroke(layer, stroke, 1.4 * F + 1.2, charge);
                     }
                 });

    painter.setPen(Qt::NoPen);
    painter.setBrush(grey(1.0, 0.85));
    for (std::size_t i = 0; i < n && i < peaks_.size(); ++i) {
        const double p = peaks_[i];
        if (!(p > 0.04)) continue;
        painter.drawEllipse(QPointF(plot.centre(i), P * boostedFraction(p)), 1.25, 1.25);
    }
}

}  // namespace corvanel::meters
