#include "meters/styles/VintageAnalyzerView.h"

#include <QRadialGradient>
#include <algorithm>

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/InstrumentCase.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"
#include "meters/styles/VintagePalette.h"
#include "spectrum/SpectrumScale.h"

namespace corvanel::meters {

namespace {

constexpr double labelMargin = 22.0;
constexpr double barGap = 3.0;

struct Bars {
    double width;
    double left(std::size_t i) const {
        return labelMargin + static_cast<double>(i) * (width + barGap);
    }
};

Bars barsFor(double canvasWidth, std::size_t n) {
    return {(canvasWidth - labelMargin - barGap * (static_cast<double>(n) - 1)) /
            static_cast<double>(n)};
}

TextStyle labelStyle() {
    return {systemFont(7, FontWeight::semibold), grey(0.0, 0.7)};
}

}  // namespace

void VintageAnalyzerView::paintBackground(QPainter& painter, const QSizeF& size) const {
    const QRectF box(QPointF(), size);
    drawBezel(painter, box, 8, {grey(0.14), grey(0.04)}, {grey(0.0, 0.5), 3, {0, 2}});
    const QRectF face = box.adjusted(6, 6, -6, -6);
    const QPointF lamp = face.topLeft() + QPointF(0.5 * face.width(), 0.25 * face.height());
    // From radius 20 to 420: the stops are placed on a plain radial gradient of radius 420
    // (Qt's two-circle form leaves a speck at the inner circle's centre).
    QRadialGradient amber(lamp, 420);
    amber.setColorAt(20.0 / 420, rgb(1.00, 0.84, 0.44));
    amber.setColorAt(220.0 / 420, rgb(0.97, 0.62, 0.13));
    amber.setColorAt(1.0, rgb(0.78, 0.35, 0.04));
    painter.fillPath(continuousRoundedRect(face, 5), amber);

    painter.translate(canvasInset, canvasInset);
    const double W = size.width() - 2 * canvasInset;
    const double H = size.height() - 2 * canvasInset;
    const double Hb = H - 13;
    for (const int d : {0, -20, -40, -60}) {
        const double y = std::clamp(Hb * (-d / 60.0), 4.0, std::max(4.0, Hb - 4));
        drawText(painter, QString::number(d), labelStyle(), QPointF(16, y),
                 HorizontalAnchor::right);
    }
    painter.setPen(QPen(vintageRed(0.8), 1.5));
    painter.drawLine(QPointF(labelMargin, (1 - redLine) * Hb), QPointF(W, (1 - redLine) * Hb));
    if (layoutBands_ == 0) return;
    const Bars bars = barsFor(W, layoutBands_);
    for (const FrequencyLabel& label : SpectrumScale::frequencyLabels()) {
        if (label.index < 0 || static_cast<std::size_t>(label.index) >= layoutBands_) continue;
        drawText(
            painter, QString::fromStdString(label.text), labelStyle(),
            QPointF(bars.left(static_cast<std::size_t>(label.index)) + bars.width / 2, H - 5.5));
    }
}

void VintageAnalyzerView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    const std::size_t n = levels_.size();
    if (n > 0) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.translate(canvasInset, canvasInset);
        const double Hb = size.height() - 2 * canvasInset - 13;
        const Bars bars = barsFor(size.width() - 2 * canvasInset, n);
        for (std::size_t i = 0; i < n; ++i) {
            const double x = bars.left(i);
            const double v = clampedLevel(levels_[i]);
            const double dark = Hb * std::min(v, redLine);
            if (dark > 0.5)
                painter.fillPath(continuousRoundedRect(QRectF(x, Hb - dark, bars.width, dark), 1),
                                 grey(0.0, 0.82));
            if (v > redLine)
                painter.fillPath(continuousRoundedRect(
                                     QRectF(x, Hb * (1 - v), bars.width, Hb * (v - redLine)), 1),
                                 vintageRed());
            if (i < peaks_.size() && peaks_[i] > 0.04f) {
                const double p = std::min(static_cast<double>(peaks_[i]), 1.0);
                painter.fillRect(QRectF(x, Hb * (1 - p), bars.width, 1.5),
                                 p <= redLine ? grey(0.0, 0.85) : vintageRed());
            }
        }
        painter.restore();
    }
    glass_.draw(painter, size, [](QPainter& p, const QSizeF& s) {
        drawGlass(p, QRectF(QPointF(), s).adjusted(6, 6, -6, -6), 5, 0.16, 0.03);
    });
}

}  // namespace corvanel::meters
