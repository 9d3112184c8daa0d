#include "meters/styles/RetroVUMeterView.h"

#include <QRadialGradient>
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
#include "meters/styles/VintagePalette.h"

namespace corvanel::meters {

namespace {

struct ScaleMark {
    double position;
    const char* label;
    bool red;
};

constexpr std::array<ScaleMark, 9> mainScale{{
    {0.00, "20", false},
    {0.17, "10", false},
    {0.29, "7", false},
    {0.41, "5", false},
    {0.53, "3", false},
    {0.63, "1", false},
    {0.72, "0", false},
    {0.84, "3", true},
    {0.96, "5", true},
}};

struct PercentMark {
    double position;
    const char* label;
};

constexpr std::array<PercentMark, 5> percentScale{{
    {0.06, "0"},
    {0.24, "30"},
    {0.40, "50"},
    {0.54, "70"},
    {0.68, "100"},
}};

constexpr std::array<double, 6> minorTicks{0.085, 0.23, 0.35, 0.47, 0.58, 0.675};

constexpr double areaInset = 8.0;

QRectF meterArea(const QSizeF& size) {
    return QRectF(QPointF(), size).adjusted(areaInset, areaInset, -areaInset, -areaInset);
}

constexpr double clipInset = 4.0;

QPainterPath areaClip(const QSizeF& size) {
    return continuousRoundedRect(
        QRectF(QPointF(), size).adjusted(clipInset, clipInset, -clipInset, -clipInset), 5);
}

QFont mainLabelFont() {
    return systemFont(9, FontWeight::semibold);
}

// The dial as drawn: the part of the meter area its geometry scales with. The end labels stand
// 1.2 R = 0.744 h out at 42 degrees from upright and must stay inside the clip. The hub, its
// plate and the corner signs scale with the width, so a wide area keeps the face's proportions
// with a box centred in it, at most 1.05 times as wide as it is high (the console's meters are
// about square).
QRectF dialBox(const QSizeF& size) {
    double widest = 0;
    for (const ScaleMark& mark : mainScale)
        widest =
            std::max(widest, textWidth(QString::fromLatin1(mark.label), {mainLabelFont(), {}}));
    const double reach = 1.2 * 0.62 * std::sin(42.0 * std::numbers::pi / 180.0);
    const QRectF box = fittedDialBox(meterArea(size), reach, widest / 2 - (areaInset - clipInset));
    const double widestBox = 1.05 * box.height();
    if (box.width() <= widestBox) return box;
    return {box.center().x() - widestBox / 2, box.top(), widestBox, box.height()};
}

}  // namespace

RetroVUMeterView::RetroVUMeterView(QString channel) : channel_(std::move(channel)) {}

RetroVUMeterView::Dial RetroVUMeterView::dialFor(const QSizeF& size) {
    const QRectF area = dialBox(size);
    return {area.topLeft() + QPointF(0.5 * area.width(), 0.97 * area.height()),
            0.62 * area.height()};
}

void RetroVUMeterView::paintBackground(QPainter& painter, const QSizeF& size) const {
    const QRectF box(QPointF(), size);
    drawBezel(painter, box, 8, {grey(0.14), grey(0.04)}, {grey(0.0, 0.5), 3, {0, 2}});
    painter.fillPath(continuousRoundedRect(box.adjusted(6, 6, -6, -6), 5), Qt::black);

    const QRectF area = dialBox(size);
    const double w = area.width();
    const double h = area.height();
    const Dial dial = dialFor(size);
    const double R = dial.radius;
    painter.save();
    painter.setClipPath(areaClip(size));

    const QPointF lampCentre = area.topLeft() + QPointF(0.5 * w, 0.6 * h);
    QRadialGradient lamp(lampCentre, 0.72 * h);
    lamp.setColorAt(0.0, rgb(1.00, 0.85, 0.45));
    lamp.setColorAt(0.55, rgb(0.98, 0.66, 0.16));
    lamp.setColorAt(0.80, rgb(0.88, 0.42, 0.05));
    lamp.setColorAt(0.95, rgb(0.45, 0.13, 0.02));
    lamp.setColorAt(1.0, Qt::transparent);
    painter.setPen(Qt::NoPen);
    painter.setBrush(lamp);
    painter.drawEllipse(lampCentre, 0.72 * h, 0.72 * h);

    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(grey(0.0, 0.9), 2, Qt::SolidLine, Qt::FlatCap));
    painter.drawPath(arcPath(dial.pivot, R, direction(0), direction(0.72)));
    painter.setPen(QPen(vintageRed(), 3.5, Qt::SolidLine, Qt::FlatCap));
    painter.drawPath(arcPath(dial.pivot, R, direction(0.72), direction(1)));

    const TextStyle mainText{mainLabelFont(), grey(0.0, 0.9)};
    for (const ScaleMark& mark : mainScale) {
        const QColor colour = mark.red ? vintageRed(0.9) : grey(0.0, 0.9);
        const double angle = direction(mark.position);
        painter.setPen(QPen(colour, 1.3, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(polarPoint(dial.pivot, R, angle), polarPoint(dial.pivot, 1.1 * R, angle));
        drawText(painter, QString::fromLatin1(mark.label), {mainText.font, colour},
                 polarPoint(dial.pivot, 1.2 * R, angle));
    }
    painter.setPen(QPen(grey(0.0, 0.75), 0.8, Qt::SolidLine, Qt::FlatCap));
    for (const double position : minorTicks) {
        const double angle = direction(position);
        painter.drawLine(polarPoint(dial.pivot, R, angle), polarPoint(dial.pivot, 1.06 * R, angle));
    }

    drawText(painter, QStringLiteral("%"), {systemFont(7, FontWeight::semibold), grey(0.0, 0.8)},
             polarPoint(dial.pivot, 0.86 * R, direction(-0.02)));
    // Fonts come in whole sizes; the 7.5-point numbers are 8-point ones drawn a little smaller.
    const TextStyle percentText{systemFont(8, FontWeight::semibold), grey(0.0, 0.85)};
    for (const PercentMark& mark : percentScale) {
        painter.save();
        painter.translate(polarPoint(dial.pivot, 0.87 * R, direction(mark.position)));
        painter.scale(7.5 / 8, 7.5 / 8);
        drawText(painter, QString::fromLatin1(mark.label), percentText, QPointF());
        painter.restore();
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(vintageRed());
    painter.drawEllipse(polarPoint(dial.pivot, 0.87 * R, direction(0.75)), 2, 2);

    const QFont signFont = systemFont(13, FontWeight::bold);
    drawText(painter, QString(QChar(0x2212)), {signFont, grey(0.0, 0.85)},
             area.topLeft() + QPointF(0.09 * w, 0.44 * h));
    drawText(painter, QStringLiteral("+"), {signFont, vintageRed()},
             area.topLeft() + QPointF(0.91 * w, 0.44 * h));
    drawText(painter, QStringLiteral("VU"),
             {systemFont(16, FontWeight::bold, FontDesign::serif), grey(0.0, 0.85)},
             dial.pivot - QPointF(0, 0.42 * R));
    painter.restore();
}

void RetroVUMeterView::paintFront(QPainter& painter, const QSizeF& size) const {
    const double w = dialBox(size).width();
    const double h = dialBox(size).height();
    const QPointF pivot = dialFor(size).pivot;
    painter.save();
    painter.setClipPath(areaClip(size));
    painter.setPen(Qt::NoPen);

    const double hub = 0.3 * w;
    const QRectF hubBox(pivot.x() - hub / 2, pivot.y() - hub / 2, hub, hub);
    QRadialGradient cap(hubBox.topLeft() + QPointF(0.5 * hub, 0.25 * hub), 0.16 * w);
    cap.setColorAt(0.0, grey(0.20));
    cap.setColorAt(1.0, grey(0.02));
    painter.setBrush(cap);
    painter.drawEllipse(hubBox);

    painter.setBrush(vintageRed(0.85));
    for (const double side : {-1.0, 1.0})
        painter.drawEllipse(pivot + QPointF(side * 0.075 * w, -0.025 * w), 0.025 * w, 0.017 * w);

    const QRectF plate(pivot.x() - 0.23 * w, pivot.y() + 0.05 * w - 0.05 * h, 0.46 * w, 0.1 * h);
    fillVertical(painter, plate, 2, {grey(0.32), grey(0.08)});
    painter.setBrush(grey(1.0, 0.35));
    for (const double side : {-1.0, 1.0})
        painter.drawEllipse(pivot + QPointF(side * 0.19 * w, 0.05 * w), 0.025 * w, 0.025 * w);
    painter.restore();

    drawText(painter, channel_, {systemFont(10, FontWeight::semibold), rgb(0.98, 0.66, 0.16, 0.8)},
             QPointF(12, 10), HorizontalAnchor::left, VerticalAnchor::top);
    drawGlass(painter, QRectF(QPointF(), size).adjusted(6, 6, -6, -6), 5, 0.16, 0.03);
}

void RetroVUMeterView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    const Dial dial = dialFor(size);
    painter.save();
    painter.setClipPath(areaClip(size));
    needle_.draw(painter, {1.7, 1.12 * dial.radius, Qt::black, {grey(0.0, 0.35), 1, {1, 1}}},
                 dial.pivot, 84 * needleLevel_.value() - 42);
    painter.restore();
    front_.draw(painter, size, [this](QPainter& p, const QSizeF& s) { paintFront(p, s); });
}

}  // namespace corvanel::meters
