#include "meters/styles/BandPlot.h"

#include <algorithm>

#include "meters/kit/LevelMath.h"
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

void drawBandScale(QPainter& painter, const BandPlot& plot, const std::vector<GridLine>& grid,
                   const QColor& lineColour, const TextStyle& labels) {
    const double top = 4.0;
    const double bottom = std::max(top, plot.plotHeight - 4.0);
    for (const GridLine& line : grid) {
        painter.setPen(QPen(lineColour, 1));
        painter.drawLine(QPointF(BandPlot::margin, line.y), QPointF(plot.canvas.width(), line.y));
        drawText(painter, QString::number(line.decibels), labels,
                 QPointF(17, std::clamp(line.y, top, bottom)), HorizontalAnchor::right);
    }
    for (const FrequencyLabel& label : SpectrumScale::frequencyLabels()) {
        if (label.index < 0 || static_cast<std::size_t>(label.index) >= plot.bands) continue;
        drawText(painter, QString::fromStdString(label.text), labels,
                 QPointF(plot.centre(static_cast<std::size_t>(label.index)),
                         plot.canvas.height() - 5.5));
    }
}

}  // namespace corvanel::meters
