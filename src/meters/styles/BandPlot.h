#pragma once
// The band plot the themed spectra share: bars along the width after a 22-point margin for the
// dB labels, a 13-point band at the bottom for the frequency labels, 2.5 points between bars.
#include <QPainter>
#include <QSizeF>
#include <QString>
#include <cstddef>
#include <vector>

#include "meters/kit/TextPlacement.h"

namespace corvanel::meters {

struct BandPlot {
    static constexpr double margin = 22.0;
    static constexpr double gap = 2.5;
    static constexpr double labelBand = 13.0;

    BandPlot(const QSizeF& canvas, std::size_t bandCount);

    double left(std::size_t band) const { return margin + (barWidth + gap) * band; }
    double centre(std::size_t band) const { return left(band) + barWidth / 2; }

    QSizeF canvas;
    std::size_t bands;
    double plotHeight;  // P: the bars' full height
    double barWidth;    // B
};

// The height the lava and storm spectra show for a level: 1.3 times the clamped level, at most 1,
// so a level of 1/1.3 already reaches the end of the plot.
double boostedFraction(double level);

// A level of the dB grid and where the plot puts it.
struct GridLine {
    int decibels;
    double y;
};

// The plot's printed scale: a one-point line in `lineColour` across the plot at each grid
// level, its dB label with the right edge's middle at (17, y) kept 4 points inside the plot,
// and the frequency labels centred under their bands.
void drawBandScale(QPainter& painter, const BandPlot& plot, const std::vector<GridLine>& grid,
                   const QColor& lineColour, const TextStyle& labels);

}  // namespace corvanel::meters
