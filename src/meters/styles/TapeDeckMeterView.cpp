#include "meters/styles/TapeDeckMeterView.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/DialGeometry.h"
#include "meters/kit/InstrumentCase.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"

namespace corvanel::meters {

namespace {

struct ScaleMark {
    double position;
    const char* label;
    bool red;
};

// Unsigned labels: the corner marks tell the halves apart. 0.78 is 0 VU.
constexpr std::array<ScaleMark, 11> scale{{
    {0.00, "20", false},
    {0.28, "10", false},
    {0.39, "7", false},
    {0.49, "5", false},
    {0.60, "3", false},
    {0.66, "2", false},
    {0.72, "1", false},
    {0.78, "0", false},
    {0.86, "1", true},
    {0.93, "2", true},
    {1.00, "3", true},
}};

constexpr double faceInset = 6.0;
constexpr double meterInset = 8.0;

QColor scaleRed(double opacity = 1.0) {
    return rgb(0.85, 0.12, 0.08, opacity);
}

QRectF meterArea(const QSizeF& size) {
    return QRectF(QPointF(), size).adjusted(meterInset, meterInset, -meterInset, -meterInset);
}

// The needle and scale never draw over the bezel's edge.
constexpr double clipInset = 4.0;

QPainterPath meterClip(const QSizeF& size) {
    return continuousRoundedRect(
        QRectF(QPointF(), size).adjusted(clipInset, clipInset, -clipInset, -clipInset), 5);
}

TextStyle labelStyle(bool red) {
    return {systemFont(9, FontWeight::semibold), red ? scaleRed() : grey(0.0)};
}

// The scale as drawn: the part of the meter area whose height the geometry scales with. The end
// labels stand 0.9 R = 1.152 h out at 24 degrees from upright and must stay on the face (inset
// 6), a point clear of its edge.
QRectF dialBox(const QSizeF& size) {
    double widest = 0;
    for (const ScaleMark& mark : scale)
        widest = std::max(widest, textWidth(QString::fromLatin1(mark.label), labelStyle(false)));
    const double reach = 0.9 * 1.28 * std::sin(24.0 * std::numbers::pi / 180.0);
    return fittedDialBox(meterArea(size), reach, widest / 2 + 1 - (meterInset - faceInset));
}

}  // namespace

TapeDeckMeterView::TapeDeckMeterView(QString channel) : channel_(std::move(channel)) {}

TapeDeckMeterView::Dial TapeDeckMeterView::dialFor(const QSizeF& size) {
    const QRectF area = dialBox(size);
    return {{area.left() + 0.5 * area.width(), area.top() + 1.55 * area.height()},
            1.28 * area.height()};
}

double TapeDeckMeterView::needleDirection(double level) {
    return 48.0 * clampedLevel(level) - 114.0;
}

void TapeDeckMeterView::paintBackground(QPainter& painter, const QSizeF& size) const {
    const QRectF box(QPointF(), size);
    drawBezel(painter, box, 8, {grey(0.16), grey(0.05)}, {grey(0.0, 0.5), 3, {0, 2}});
    fillVertical(painter, box.adjusted(faceInset, faceInset, -faceInset, -faceInset), 5,
                 {rgb(1.00, 0.73, 0.30), rgb(0.96, 0.58, 0.12)});

    const QRectF area = dialBox(size);
    const Dial dial = dialFor(size);
    const double r = dial.radius;
    painter.save();
    painter.setClipPath(meterClip(size));
    painter.strokePath(arcPath(dial.pivot, 0.8 * r, needleDirection(0.78), needleDirection(1.0)),
                       QPen(scaleRed(), 4.5, Qt::SolidLine, Qt::FlatCap));
    for (const ScaleMark& mark : scale) {
        const double angle = 48.0 * mark.position - 114.0;
        painter.setPen(
            QPen(mark.red ? scaleRed(0.9) : grey(0.0, 0.9), 1.2, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(polarPoint(dial.pivot, 0.76 * r, angle),
                         polarPoint(dial.pivot, 0.83 * r, angle));
        drawText(painter, QString::fromLatin1(mark.label), labelStyle(mark.red),
                 polarPoint(dial.pivot, 0.9 * r, angle));
    }
    const QFont markFont = systemFont(14, FontWeight::bold);
    drawText(painter, QString(QChar(0x2212)), {markFont, grey(0.0, 0.85)},
             area.topLeft() + QPointF(0.08 * area.width(), 0.16 * area.height()));
    drawText(painter, QStringLiteral("+"), {markFont, scaleRed()},
             area.topLeft() + QPointF(0.92 * area.width(), 0.16 * area.height()));
    painter.restore();

    const TextStyle channel{systemFont(10, FontWeight::semibold), grey(0.0, 0.5)};
    const TextStyle vu{systemFont(15, FontWeight::bold, FontDesign::serif), grey(0.0, 0.8)};
    const double rowCentre = size.height() - 8 - std::max(textHeight(vu), textHeight(channel)) / 2;
    drawText(painter, channel_, channel, {14, rowCentre}, HorizontalAnchor::left);
    drawText(painter, QStringLiteral("vu"), vu, {size.width() - 14, rowCentre},
             HorizontalAnchor::right);
}

void TapeDeckMeterView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    const Dial dial = dialFor(size);
    painter.save();
    painter.setClipPath(meterClip(size));
    needle_.draw(painter, {1.6, 0.86 * dial.radius, grey(0.0), {grey(0.0, 0.3), 1, {1, 1}}},
                 dial.pivot, 48.0 * needleLevel_.value() - 24.0);
    painter.restore();
    glass_.draw(painter, size, [](QPainter& p, const QSizeF& s) {
        drawGlass(p, QRectF(QPointF(), s).adjusted(6, 6, -6, -6), 5, 0.20, 0.03);
    });
}

}  // namespace corvanel::meters
