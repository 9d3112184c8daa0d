#include "meters/styles/LEDBarMeterView.h"

#include <algorithm>
#include <array>

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/InstrumentCase.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"
#include "meters/styles/SegmentPalette.h"

namespace corvanel::meters {

namespace {

struct ScaleMark {
    double position;
    const char* label;
};

// The labelled positions of the classic VU scale: the bar reads on the same scale.
constexpr std::array<ScaleMark, 5> scale{{
    {0.00, "-20"},
    {0.30, "-10"},
    {0.55, "-5"},
    {0.78, "0"},
    {1.00, "+3"},
}};

struct Bar {
    QRectF canvas;
    double segmentWidth;

    explicit Bar(const QSizeF& size)
        : canvas(QRectF(QPointF(), size)
                     .adjusted(LEDBarMeterView::canvasInset, LEDBarMeterView::canvasInset,
                               -LEDBarMeterView::canvasInset, -LEDBarMeterView::canvasInset)),
          segmentWidth((canvas.width() - LEDBarMeterView::letterMargin -
                        (LEDBarMeterView::segmentCount - 1) * LEDBarMeterView::segmentGap) /
                       LEDBarMeterView::segmentCount) {}

    double segmentX(int s) const {
        return canvas.left() + LEDBarMeterView::letterMargin +
               s * (segmentWidth + LEDBarMeterView::segmentGap);
    }
    QRectF segment(int s) const {
        return {segmentX(s), canvas.top() + 3, segmentWidth,
                canvas.height() - LEDBarMeterView::scaleBand - 6};
    }
};

QColor segmentColour(int s) {
    return ledColour((s + 1.0) / LEDBarMeterView::segmentCount);
}

}  // namespace

LEDBarMeterView::LEDBarMeterView(QString channel) : channel_(std::move(channel)) {}

void LEDBarMeterView::setLevel(float level) {
    level_ = level;
}

void LEDBarMeterView::paintBackground(QPainter& painter, const QSizeF& size) const {
    const QRectF box(QPointF(), size);
    drawBezel(painter, box, 12, {grey(0.42), grey(0.12)}, {grey(0.0, 0.4), 3, {0, 2}});
    fillVertical(painter, box.adjusted(5, 5, -5, -5), 9, {grey(0.10), grey(0.03)});

    const Bar bar(size);
    const QRectF& c = bar.canvas;
    drawText(painter, channel_,
             {systemFont(9, FontWeight::semibold, FontDesign::monospaced), grey(0.55)},
             c.topLeft() + QPointF(5, (c.height() - scaleBand) / 2));
    for (int s = 0; s < segmentCount; ++s)
        painter.fillPath(continuousRoundedRect(bar.segment(s), 1),
                         withOpacity(segmentColour(s), unlitOpacity));
    const QFont labelFont = systemFont(7, FontWeight::medium, FontDesign::monospaced);
    for (const ScaleMark& mark : scale) {
        const double x =
            std::min(std::max(letterMargin + mark.position * (c.width() - letterMargin), 22.0),
                     c.width() - 10);
        const QColor colour = mark.position >= 0.78 ? rgb(1.00, 0.23, 0.19, 0.8) : grey(0.55);
        drawText(painter, QString::fromLatin1(mark.label), {labelFont, colour},
                 c.topLeft() + QPointF(x, c.height() - 6.5));
    }
}

void LEDBarMeterView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    const int lit = litSegments(level_, segmentCount);
    if (lit > 0) {
        lit_.prepare(painter, size, [](QPainter& p, const QSizeF& s) {
            const Bar bar(s);
            for (int i = 0; i < segmentCount; ++i)
                p.fillPath(continuousRoundedRect(bar.segment(i), 1), segmentColour(i));
        });
        // The lit run is one copy from the pre-drawn, fully lit bar, cut in the gap after it.
        const Bar bar(size);
        const double right = bar.segmentX(lit - 1) + bar.segmentWidth + segmentGap / 2;
        lit_.drawPart(painter, QRectF(0, 0, right, size.height()));
    }
    glass_.draw(painter, size, [](QPainter& p, const QSizeF& s) {
        drawGlass(p, QRectF(QPointF(), s).adjusted(5, 5, -5, -5), 9, 0.10, 0.015);
    });
}

}  // namespace corvanel::meters
