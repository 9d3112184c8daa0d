#include "meters/styles/YamahaTwelveBandEQView.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"
#include "spectrum/SpectrumScale.h"

namespace corvanel::meters {

namespace {

struct Band {
    double centre;
    const char* label;
};

constexpr std::array<Band, YamahaTwelveBandEQView::columnCount> bands{{
    {31.5, "31"},
    {63, "63"},
    {125, "125"},
    {250, "250"},
    {500, "500"},
    {1000, "1k"},
    {2000, "2k"},
    {4000, "4k"},
    {6300, "6.3k"},
    {8000, "8k"},
    {12500, "12.5k"},
    {16000, "16k"},
}};

constexpr double canvasInset = 10.0;

// The analyzer band whose centre is nearest `frequency` on a log scale; ties keep the lower.
std::size_t nearestBand(double frequency) {
    const auto& centres = SpectrumScale::bandCenters();
    if (centres.size() < 2) return 0;
    std::size_t best = 0;
    double bestDistance = std::abs(std::log(centres[0] / frequency));
    for (std::size_t i = 1; i < centres.size(); ++i) {
        const double distance = std::abs(std::log(centres[i] / frequency));
        if (distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

QColor segmentColour(int s) {
    const double q = (s + 1.0) / YamahaTwelveBandEQView::segmentCount;
    if (q > 0.88) return rgb(0.95, 0.2, 0.08);
    if (q > 0.72) return rgb(0.95, 0.68, 0.1);
    return rgb(0.2, 0.92, 0.5);
}

struct Ladders {
    QRectF canvas;
    double barHeight;
    double columnWidth;
    double pitch;
    double segmentHeight;

    explicit Ladders(const QSizeF& size)
        : canvas(QRectF(QPointF(), size)
                     .adjusted(canvasInset, canvasInset, -canvasInset, -canvasInset)),
          barHeight(std::max(canvas.height() - 20, 1.0)),
          columnWidth(std::max((canvas.width() - 55) / 12, 2.0)),
          pitch(columnWidth + 5),
          segmentHeight(std::max((barHeight - 34) / 18, 1.0)) {}

    double columnX(int n) const { return canvas.left() + pitch * n; }
    double segmentTop(int s) const {
        return canvas.top() + barHeight - segmentHeight * (s + 1) - 2.0 * s;
    }
    QRectF segment(int n, int s) const {
        return {columnX(n), segmentTop(s), columnWidth, segmentHeight};
    }
    double labelLine() const { return canvas.top() + canvas.height() - 7; }
    double cornerRadius() const { return std::min(segmentHeight / 2, 1.5); }
};

}  // namespace

std::array<float, YamahaTwelveBandEQView::columnCount> YamahaTwelveBandEQView::bandLevels() const {
    std::array<float, columnCount> values{};
    if (levels_.empty()) return values;
    const std::size_t last = levels_.size() - 1;
    for (std::size_t c = 0; c < bands.size(); ++c) {
        const std::size_t i = nearestBand(bands[c].centre);
        const std::size_t from = i == 0 ? 0 : std::min(i - 1, last);
        const std::size_t to = std::min(i + 1, last);
        values[c] = *std::max_element(levels_.begin() + static_cast<std::ptrdiff_t>(from),
                                      levels_.begin() + static_cast<std::ptrdiff_t>(to) + 1);
    }
    return values;
}

void YamahaTwelveBandEQView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size, [](QPainter& p, const QSizeF& s) {
        const QRectF box(QPointF(), s);
        p.fillPath(continuousRoundedRect(box, 3), rgb(0.015, 0.045, 0.035));
        strokeInside(p, box, 3, grey(0.0), 2);
        const Ladders ladders(s);
        const QFont labelFont = systemFont(7, FontWeight::medium, FontDesign::monospaced);
        for (int n = 0; n < columnCount; ++n) {
            for (int k = 0; k < segmentCount; ++k)
                p.fillPath(continuousRoundedRect(ladders.segment(n, k), ladders.cornerRadius()),
                           withOpacity(segmentColour(k), 0.1));
            drawText(p, QString::fromLatin1(bands[static_cast<std::size_t>(n)].label),
                     {labelFont, grey(0.64)},
                     {ladders.columnX(n) + ladders.columnWidth / 2, ladders.labelLine()});
        }
        drawText(p, QStringLiteral("Hz"),
                 {systemFont(6, FontWeight::medium, FontDesign::monospaced), grey(0.45)},
                 {ladders.canvas.right() - 1, ladders.labelLine()}, HorizontalAnchor::right);
    });
    lit_.prepare(painter, size, [](QPainter& p, const QSizeF& s) {
        const Ladders ladders(s);
        for (int n = 0; n < columnCount; ++n)
            for (int k = 0; k < segmentCount; ++k)
                p.fillPath(continuousRoundedRect(ladders.segment(n, k), ladders.cornerRadius()),
                           segmentColour(k));
    });
    const Ladders ladders(size);
    const std::array<float, columnCount> values = bandLevels();
    for (int n = 0; n < columnCount; ++n) {
        const int lit = litSegments(values[static_cast<std::size_t>(n)], segmentCount);
        if (lit == 0) continue;
        const double top = ladders.segmentTop(lit - 1) - 1.0;
        lit_.drawPart(painter, QRectF(ladders.columnX(n) - 2.5, top, ladders.columnWidth + 5,
                                      ladders.canvas.top() + ladders.barHeight + 1.0 - top));
    }
    // The caption is printed on the glass, over the lit segments of the top columns.
    caption_.draw(painter, size, [](QPainter& p, const QSizeF& s) {
        drawText(p, QStringLiteral("12 BAND SPECTRUM"),
                 {systemFont(6, FontWeight::medium, FontDesign::monospaced, 0.8), grey(0.48)},
                 {s.width() - 6, 6}, HorizontalAnchor::right, VerticalAnchor::top);
    });
}

}  // namespace corvanel::meters
