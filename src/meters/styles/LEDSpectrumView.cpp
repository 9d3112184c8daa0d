#include "meters/styles/LEDSpectrumView.h"

#include <algorithm>
#include <cmath>

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/InstrumentCase.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"
#include "meters/styles/SegmentPalette.h"
#include "spectrum/SpectrumScale.h"

namespace corvanel::meters {

namespace {

// Where columns and segments lie in the LED canvas (the view inset by 11 points).
struct Ladder {
    QRectF canvas;
    std::size_t bands;
    double columnWidth;
    double segmentHeight;

    Ladder(const QSizeF& size, std::size_t n)
        : canvas(QPointF(LEDSpectrumView::canvasInset, LEDSpectrumView::canvasInset),
                 size.shrunkBy(QMarginsF(11, 11, 11, 11))),
          bands(n),
          columnWidth(n == 0 ? 0.0
                             : (canvas.width() - LEDSpectrumView::scaleMargin -
                                LEDSpectrumView::columnGap * static_cast<double>(n - 1)) /
                                   static_cast<double>(n)),
          segmentHeight((canvas.height() - LEDSpectrumView::labelBand -
                         (LEDSpectrumView::segmentCount - 1) * LEDSpectrumView::segmentGap) /
                        LEDSpectrumView::segmentCount) {}

    double floor() const { return canvas.top() + canvas.height() - LEDSpectrumView::labelBand; }
    double columnX(std::size_t i) const {
        return canvas.left() + LEDSpectrumView::scaleMargin +
               static_cast<double>(i) * (columnWidth + LEDSpectrumView::columnGap);
    }
    double segmentTop(int s) const {
        return floor() - segmentHeight * (s + 1) - LEDSpectrumView::segmentGap * s;
    }
    QRectF segment(std::size_t i, int s) const {
        return {columnX(i), segmentTop(s), columnWidth, segmentHeight};
    }
};

const QColor labelGrey = grey(0.55);

TextStyle scaleText() {
    return {systemFont(7, FontWeight::medium, FontDesign::monospaced), labelGrey};
}

// Peak segment index, or -1 when the band shows none.
int peakSegment(const std::vector<float>& peaks, std::size_t i) {
    if (i >= peaks.size()) return -1;
    const double peak = peaks[i];
    if (!std::isfinite(peak) || !(peak > LEDSpectrumView::minimumPeak)) return -1;
    return std::min(static_cast<int>(std::min(peak, 2.0) * LEDSpectrumView::segmentCount),
                    LEDSpectrumView::segmentCount - 1);
}

}  // namespace

void LEDSpectrumView::setValues(const MeterValues& values) {
    levels_ = values.levels;
    peaks_ = values.peaks;
}

void LEDSpectrumView::paintBackground(QPainter& painter, const QSizeF& size) const {
    const QRectF box(QPointF(), size);
    drawBezel(painter, box, 12, {grey(0.42), grey(0.12)}, {grey(0.0, 0.4), 3, {0, 2}});
    fillVertical(painter, box.adjusted(5, 5, -5, -5), 9, {grey(0.10), grey(0.03)});
    const Ladder ladder(size, layoutBands_);
    if (layoutBands_ == 0) return;

    const TextStyle text = scaleText();
    const double floor = ladder.canvas.height() - labelBand;
    for (const int d : {0, -20, -40, -60}) {
        const double y = std::clamp(floor * (-d / 60.0), 4.0, ladder.canvas.height() - 17.0);
        drawText(painter, QString::number(d), text, ladder.canvas.topLeft() + QPointF(15, y),
                 HorizontalAnchor::right, VerticalAnchor::centre);
    }
    for (std::size_t i = 0; i < layoutBands_; ++i)
        for (int s = 0; s < segmentCount; ++s)
            painter.fillPath(continuousRoundedRect(ladder.segment(i, s), 1),
                             withOpacity(ledColour((s + 1.0) / segmentCount), unlitOpacity));
    for (const FrequencyLabel& label : SpectrumScale::frequencyLabels()) {
        if (label.index < 0 || static_cast<std::size_t>(label.index) >= layoutBands_) continue;
        const auto index = static_cast<std::size_t>(label.index);
        drawText(painter, QString::fromStdString(label.text), text,
                 {ladder.columnX(index) + ladder.columnWidth / 2,
                  ladder.canvas.top() + ladder.canvas.height() - 5.5});
    }
}

void LEDSpectrumView::paintLadders(QPainter& painter, const QSizeF& size, bool peakColour) const {
    const Ladder ladder(size, layoutBands_);
    for (std::size_t i = 0; i < layoutBands_; ++i)
        for (int s = 0; s < segmentCount; ++s)
            painter.fillPath(continuousRoundedRect(ladder.segment(i, s), 1),
                             peakColour ? systemOrange() : ledColour((s + 1.0) / segmentCount));
}

void LEDSpectrumView::paint(QPainter& painter, const QSizeF& size) {
    if (levels_.size() != layoutBands_) {
        layoutBands_ = levels_.size();
        background_.invalidate();
        lit_.invalidate();
        peak_.invalidate();
    }
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    if (layoutBands_ > 0) {
        // Lit segments and peaks are cut out of pre-drawn full ladders: one copy per column.
        lit_.prepare(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintLadders(p, s, false); });
        peak_.prepare(painter, size,
                      [this](QPainter& p, const QSizeF& s) { paintLadders(p, s, true); });
        const Ladder ladder(size, layoutBands_);
        const double halfGap = segmentGap / 2;
        for (std::size_t i = 0; i < layoutBands_; ++i) {
            const double x = ladder.columnX(i) - columnGap / 2;
            const double width = ladder.columnWidth + columnGap;
            const int lit = litSegments(levels_[i], segmentCount);
            if (lit > 0) {
                const double top = ladder.segmentTop(lit - 1) - halfGap;
                lit_.drawPart(painter, QRectF(x, top, width, ladder.floor() + halfGap - top));
            }
            const int peak = peakSegment(peaks_, i);
            if (peak >= lit) {
                const double top = ladder.segmentTop(peak) - halfGap;
                peak_.drawPart(painter, QRectF(x, top, width, ladder.segmentHeight + segmentGap));
            }
        }
    }
    glass_.draw(painter, size, [](QPainter& p, const QSizeF& s) {
        drawGlass(p, QRectF(QPointF(), s).adjusted(5, 5, -5, -5), 9, 0.10, 0.015);
    });
}

}  // namespace corvanel::meters
