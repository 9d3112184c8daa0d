#include "meters/styles/MagmaAnalyzerView.h"

#include <QLinearGradient>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <vector>

#include "meters/kit/LayerEffects.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/Noise.h"
#include "meters/kit/RoundStroke.h"
#include "meters/kit/SystemFonts.h"
#include "meters/styles/BandPlot.h"
#include "meters/styles/InfernoBackdrop.h"
#include "meters/styles/Lava.h"

namespace corvanel::meters {

namespace {

TextStyle labelStyle() {
    return {systemFont(7, FontWeight::medium, FontDesign::monospaced), Lava::ash(0.55)};
}

}  // namespace

void MagmaAnalyzerView::paintBackdrop(QPainter& painter, const QSizeF& size) const {
    InfernoBackdrop::paint(painter, size);
}

BandPlotView::Scale MagmaAnalyzerView::scaleFor(const BandPlot& plot) const {
    // Levels rise from the floor, boosted like the jets.
    std::vector<GridLine> grid;
    for (const int d : {-20, -40, -60}) {
        const double g = 1.3 * (d + 60) / 60.0;
        if (g <= 1) grid.push_back({d, plot.plotHeight * (1 - g)});
    }
    return {grid, Lava::ash(0.06), labelStyle()};
}

void MagmaAnalyzerView::paintBands(QPainter& painter, const BandPlot& plot) {
    const std::size_t n = plot.bands;
    const double P = plot.plotHeight;
    const double W = plot.canvas.width();

    double mean = 0;
    for (const float v : levels_)
        mean += clampedLevel(v);
    mean /= static_cast<double>(n);
    const QRectF floor(BandPlot::margin, P - 4, W - BandPlot::margin, 4);
    drawWithGlow(painter, floor, Lava::orange(0.5 * mean + 0.4), 5, [&](QPainter& layer) {
        QLinearGradient ember(floor.topLeft(), floor.bottomLeft());
        ember.setColorAt(0.0, Lava::orange(0.5 * mean + 0.5));
        ember.setColorAt(1.0, Lava::deep());
        layer.fillRect(floor, ember);
    });

    // The glow layer only needs to reach as high as the highest jet.
    double highest = 0;
    for (const float v : levels_)
        highest = std::max(highest, boostedFraction(v));
    const QRectF jets(0, P * (1 - highest) - 3, W, P * highest + 3);
    drawWithGlow(painter, jets, Lava::orange(0.6), 3.5, [&](QPainter& layer) {
        QLinearGradient heat(QPointF(0, P), QPointF(0, 0));
        heat.setColorAt(0.0, Lava::deep());
        heat.setColorAt(1.0 / 3, Lava::red());
        heat.setColorAt(2.0 / 3, Lava::orange());
        heat.setColorAt(1.0, Lava::hot());
        const double sway = std::min(plot.barWidth / 2, 2.5);
        for (std::size_t i = 0; i < n; ++i) {
            const double F = boostedFraction(levels_[i]);
            const double J = P * F;
            if (J <= 2) continue;
            const std::int64_t key =
                static_cast<std::int64_t>(std::trunc(20 * F)) + 31 * static_cast<std::int64_t>(i);
            const QPointF base(plot.centre(i), P);
            const QPointF tip(plot.centre(i) + 0.3 * plot.barWidth * noise(key, 90), P - J);
            QPolygonF jet{base};
            for (int j = 1; j <= 3; ++j)
                jet << base + (tip - base) * (j / 4.0) + QPointF(sway * noise(key, j), 0);
            jet << tip;
            drawRoundStroke(layer, jet, 1.6 * F + 1.2, heat);
            layer.setPen(Qt::NoPen);
            layer.setBrush(Lava::hot(0.6 * F + 0.4));
            layer.drawEllipse(tip, 1.5, 1.5);
        }
    });

    painter.setPen(Qt::NoPen);
    painter.setBrush(Lava::orange(0.85));
    for (std::size_t i = 0; i < n && i < peaks_.size(); ++i) {
        const double p = peaks_[i];
        if (!(p > 0.04)) continue;
        painter.drawEllipse(QPointF(plot.centre(i), P * (1 - boostedFraction(p))), 1.25, 1.25);
    }
}

}  // namespace corvanel::meters
