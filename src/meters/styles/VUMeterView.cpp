#include "meters/styles/VUMeterView.h"

#include <algorithm>
#include <array>

#include "meters/kit/Colors.h"
#include "meters/kit/DialGeometry.h"
#include "meters/kit/InstrumentCase.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"

namespace corvanel::meters {

namespace {

struct ScaleMark {
    double position;
    const char* label;  // nullptr: a minor tick
};

// A printed scale: positions are where the marks sit on the needle's travel, not derived from
// their dB values.
constexpr std::array<ScaleMark, 9> scale{{
    {0.00, "-20"},
    {0.15, nullptr},
    {0.30, "-10"},
    {0.45, nullptr},
    {0.55, "-5"},
    {0.67, nullptr},
    {0.78, "0"},
    {0.90, nullptr},
    {1.00, "+3"},
}};

constexpr double dialInset = 9.0;

}  // namespace

VUMeterView::VUMeterView(QString channel) : channel_(std::move(channel)) {}

VUMeterView::Dial VUMeterView::dialFor(const QSizeF& size) {
    const double w = size.width() - 2 * dialInset;
    const double h = size.height() - 2 * dialInset;
    return {{dialInset + 0.5 * w, dialInset + h - 4}, std::min(0.47 * w, 0.85 * h)};
}

double VUMeterView::needleDirection(double level) {
    return clampedLevel(level) * 90.0 - 135.0;
}

void VUMeterView::paintBackground(QPainter& painter, const QSizeF& size) const {
    const QRectF box(QPointF(), size);
    drawBezel(painter, box, 10, {grey(0.4), grey(0.1)}, {grey(0.0, 0.4), 3, {0, 2}});
    fillVertical(painter, box.adjusted(5, 5, -5, -5), 7,
                 {rgb(0.99, 0.96, 0.87), rgb(0.90, 0.85, 0.70)});

    const Dial dial = dialFor(size);
    const double r = dial.radius;
    painter.strokePath(arcPath(dial.pivot, 0.96 * r, needleDirection(0.78), -45.0),
                       QPen(rgb(1, 0, 0, 0.85), 3, Qt::SolidLine, Qt::FlatCap));
    const TextStyle labelText{systemFont(8, FontWeight::medium), grey(0.0, 0.8)};
    for (const ScaleMark& mark : scale) {
        const double angle = mark.position * 90.0 - 135.0;
        const bool major = mark.label != nullptr;
        const QColor colour = mark.position >= 0.78 ? rgb(1, 0, 0, 0.9) : grey(0.0, 0.75);
        painter.setPen(QPen(colour, major ? 1.4 : 0.8, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(polarPoint(dial.pivot, (major ? 0.84 : 0.88) * r, angle),
                         polarPoint(dial.pivot, 0.955 * r, angle));
        if (major)
            drawText(painter, QString::fromLatin1(mark.label), labelText,
                     polarPoint(dial.pivot, 0.72 * r, angle));
    }

    // Legend row: both texts centred on the row, whose bottom is 9 points above the view's.
    const TextStyle vu{systemFont(11, FontWeight::bold, FontDesign::serif), grey(0.0, 0.6)};
    const TextStyle channel{systemFont(10, FontWeight::semibold), grey(0.0, 0.5)};
    const double rowCentre = size.height() - 9 - std::max(textHeight(vu), textHeight(channel)) / 2;
    drawText(painter, QStringLiteral("VU"), vu, {14, rowCentre}, HorizontalAnchor::left);
    drawText(painter, channel_, channel, {size.width() - 14, rowCentre}, HorizontalAnchor::right);
}

void VUMeterView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    const Dial dial = dialFor(size);
    // The spring may overshoot the ends; the needle follows it, as a real movement would.
    needle_.draw(painter,
                 {2.0, 0.94 * dial.radius, rgb(0.16, 0.10, 0.08), {grey(0.0, 0.25), 1, {1.5, 1.5}}},
                 dial.pivot, needleLevel_.value() * 90.0 - 45.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(grey(0.15));
    painter.drawEllipse(dial.pivot, 5, 5);
    glass_.draw(painter, size, [](QPainter& p, const QSizeF& s) {
        drawGlass(p, QRectF(QPointF(), s).adjusted(5, 5, -5, -5), 7, 0.25, 0.03);
    });
}

}  // namespace corvanel::meters
