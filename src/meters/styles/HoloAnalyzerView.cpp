#include "meters/styles/HoloAnalyzerView.h"

#include <QLinearGradient>
#include <algorithm>

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/LayerEffects.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/SystemFonts.h"
#include "meters/styles/BandPlot.h"
#include "meters/styles/HoloGlassPanel.h"
#include "meters/styles/HoloVUMeterView.h"

namespace corvanel::meters {

namespace {

TextStyle labelStyle() {
    return {systemFont(7, FontWeight::medium, FontDesign::monospaced),
            withOpacity(systemCyan(), 0.5)};
}

}  // namespace

void HoloAnalyzerView::paintBackdrop(QPainter& painter, const QSizeF& size) const {
    drawHoloGlassPanel(painter, size);
}

BandPlotView::Scale HoloAnalyzerView::scaleFor(const BandPlot& plot) const {
    std::vector<GridLine> grid;
    for (const int d : {0, -20, -40, -60})
        grid.push_back({d, plot.plotHeight * (1 - (d + 60) / 60.0)});
    return {grid, withOpacity(systemCyan(), 0.08), labelStyle()};
}

void HoloAnalyzerView::paintBands(QPainter& painter, const BandPlot& plot) {
    const std::size_t n = plot.bands;
    const double P = plot.plotHeight;
    const double W = plot.canvas.width();
    // Each glow layer covers only the height its shapes reach.
    double tallest = 0;
    for (const float v : levels_)
        tallest = std::max(tallest, clampedLevel(v));
    const QRectF bars(0, P * (1 - tallest), W, P * tallest);
    double highestCap = 1;
    double lowestCap = 0;
    for (std::size_t i = 0; i < n && i < peaks_.size(); ++i) {
        if (!(peaks_[i] > 0.04f)) continue;
        const double y = 1 - std::min(static_cast<double>(peaks_[i]), 1.0);
        highestCap = std::min(highestCap, y);
        lowestCap = std::max(lowestCap, y);
    }
    const QRectF caps(0, P * highestCap, W, std::max(0.0, P * (lowestCap - highestCap)) + 1.5);

    drawWithGlow(painter, bars, withOpacity(systemCyan(), 0.5), 4, [&](QPainter& layer) {
        QLinearGradient neon(QPointF(0, P), QPointF(0, 0));
        neon.setStops(HoloVUMeterView::neonGradient());
        layer.setPen(Qt::NoPen);
        for (std::size_t i = 0; i < n; ++i) {
            const double b = P * clampedLevel(levels_[i]);
            if (b <= 1) continue;
            layer.fillPath(continuousRoundedRect(QRectF(plot.left(i), P - b, plot.barWidth, b),
                                                 plot.barWidth / 3),
                           neon);
        }
    });

    if (highestCap > lowestCap) return;
    drawWithGlow(painter, caps, grey(1.0, 0.6), 2, [&](QPainter& layer) {
        for (std::size_t i = 0; i < n && i < peaks_.size(); ++i) {
            const double p = peaks_[i];
            if (!(p > 0.04)) continue;
            layer.fillRect(QRectF(plot.left(i), P * (1 - std::min(p, 1.0)), plot.barWidth, 1.5),
                           grey(1.0, 0.9));
        }
    });
}

}  // namespace corvanel::meters
