#include "meters/BandPlot.h"

#include <algorithm>

#include "meters/LevelMath.h"
#include "spectrum/SpectrumScale.h"

namespace corvanel::meters {

BandPlot::BandPlot(const QSizeF& canvasSize, std::size_t bandCount)
    : canvas(canvasSize),
      bands(bandCount),
      plotHeight(canvasSize.height() - labelBand),
      barWidth(bandCount == 0 ? 0.0
                              : (canvasSize.width() - margin - gap * (bandCount - 1.0)) /
                                    static_cast<double>(bandCount)) {}

double boostedFraction(double level) {
    return std::min(1.3 * clampedLevel(level), 1.0);
}

void drawDecibelLabel(QPainter& painter, const BandPlot& plot, int decibels, double y,
                      const TextStyle& style) {
    const double top = 4.0;
    const double bottom = std::max(top, plot.plotHeight - 4.0);
    drawText(painter, QString::number(decibels), style, QPointF(17, std::clamp(y, top, bottom)),
             HorizontalAnchor::right);
}

void drawFrequencyLabels(QPainter& painter, const BandPlot& plot, double offset,
                         const TextStyle& style) {
    for (const FrequencyLabel& label : SpectrumScale::frequencyLabels()) {
        if (label.index < 0 || static_cast<std::size_t>(label.index) >= plot.bands) continue;
        drawText(painter, QString::fromStdString(label.text), style,
                 QPointF(plot.left(static_cast<std::size_t>(label.index)) + offset,
                         plot.canvas.height() - 5.5));
    }
}

}  // namespace corvanel::meters
