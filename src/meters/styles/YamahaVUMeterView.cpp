#include "meters/styles/YamahaVUMeterView.h"

#include <QLinearGradient>
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
    const char16_t* label;
    bool red;
};

// The first three labels carry a true minus sign.
constexpr std::array<ScaleMark, 6> scale{{
    {0.0, u"\u221220", false},
    {0.28, u"\u221210", false},
    {0.51, u"\u22125", false},
    {0.76, u"0", false},
    {0.88, u"+1", true},
    {1.0, u"+3", true},
}};

constexpr double scaleInset = 3.0;

QColor dialRed() {
    return rgb(0.72, 0.08, 0.05);
}

double needleAngle(double level) {
    return level * 50.0 - 25.0;
}

QFont labelFont() {
    return systemFont(7, FontWeight::medium, FontDesign::rounded);
}

// The dial as drawn: the part of the meter whose height the geometry scales with. The end labels
// stand 0.88 r = 0.968 h out at 25 degrees from upright, on the scale canvas (itself 3 points in
// from the meter's edges), and must stay inside it.
QRectF dialBox(const QSizeF& size) {
    double widest = 0;
    for (const ScaleMark& mark : scale)
        widest = std::max(widest, textWidth(QString::fromUtf16(mark.label), {labelFont(), {}}));
    const double reach = 0.88 * 1.1 * std::sin(25.0 * std::numbers::pi / 180.0);
    return fittedDialBox(QRectF(QPointF(), size), reach, widest / 2 + 2 * scaleInset);
}

}  // namespace

// A little quicker and better damped than the other needles.
YamahaVUMeterView::YamahaVUMeterView(QString channel)
    : SpringNeedleMeter(0.3, 0.48), channel_(std::move(channel)) {}

YamahaVUMeterView::Dial YamahaVUMeterView::dialFor(const QSizeF& size) {
    const QRectF box = dialBox(size);
    return {{0.5 * box.width(), box.top() + 1.34 * box.height()}, 1.1 * box.height()};
}

void YamahaVUMeterView::paintDial(QPainter& painter, const QSizeF& size) const {
    const QRectF box(QPointF(), size);
    fillVertical(painter, box, 3, {rgb(0.93, 0.86, 0.66), rgb(0.72, 0.64, 0.45)});
    strokeInside(painter, box, 3, grey(0.0, 0.8), 3);

    painter.save();
    painter.setClipRect(box.adjusted(scaleInset, scaleInset, -scaleInset, -scaleInset));
    painter.translate(scaleInset, scaleInset);
    const Dial dial = dialFor(size);
    const QRectF scaleBox = dialBox(size);
    const double r = dial.radius;
    for (const ScaleMark& mark : scale) {
        const double angle = 50.0 * mark.position - 115.0;
        const QColor colour = mark.red ? dialRed() : grey(0.0, 0.82);
        painter.setPen(QPen(colour, 1, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(polarPoint(dial.pivot, 0.73 * r, angle),
                         polarPoint(dial.pivot, 0.8 * r, angle));
        drawText(painter, QString::fromUtf16(mark.label), {labelFont(), colour},
                 polarPoint(dial.pivot, 0.88 * r, angle));
    }
    painter.strokePath(arcPath(dial.pivot, 0.74 * r, -77.0, -65.0),
                       QPen(dialRed(), 2, Qt::SolidLine, Qt::FlatCap));
    drawText(painter, QStringLiteral("VU"),
             {systemFont(10, FontWeight::semibold, FontDesign::rounded), grey(0.0, 0.72)},
             {0.5 * size.width(), scaleBox.top() + 0.68 * scaleBox.height()});
    painter.restore();
}

void YamahaVUMeterView::paint(QPainter& painter, const QSizeF& size) {
    const QRectF box(QPointF(), size);
    dial_.draw(painter, size, [this](QPainter& p, const QSizeF& s) { paintDial(p, s); });
    painter.save();
    painter.setClipRect(box);
    const Dial dial = dialFor(size);
    needle_.draw(painter, {1.25, 0.78 * dial.radius, grey(0.0, 0.9), {}}, dial.pivot,
                 needleAngle(needleLevel_.value()));
    painter.restore();
    glass_.draw(painter, size, [this](QPainter& p, const QSizeF& s) {
        const QRectF area(QPointF(), s);
        drawText(p, channel_,
                 {systemFont(7, FontWeight::bold, FontDesign::monospaced, 1.0), grey(0.0, 0.62)},
                 {s.width() / 2, s.height() - 5}, HorizontalAnchor::centre, VerticalAnchor::bottom);
        QLinearGradient sheen(area.topLeft(), area.bottomRight());
        sheen.setColorAt(0.0, grey(1.0, 0.22));
        sheen.setColorAt(0.5, grey(1.0, 0.0));
        sheen.setColorAt(1.0, grey(0.0, 0.05));
        p.fillPath(continuousRoundedRect(area, 3), sheen);
    });
}

}  // namespace corvanel::meters
