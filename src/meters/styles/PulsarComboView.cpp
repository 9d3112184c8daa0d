#include "meters/styles/PulsarComboView.h"

#include <QRadialGradient>
#include <algorithm>
#include <array>

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/DialGeometry.h"
#include "meters/kit/LayerEffects.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/RoundStroke.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"

namespace corvanel::meters {

namespace {

struct RimLabel {
    double x, y;  // unit point of the rim's bounding square
    const char* text;
};

// The centre frequencies of bands 0, 10, 20 and 30, where the spokes point up, right, down and
// left.
constexpr std::array<RimLabel, 4> rimLabels{{
    {0.5, 0.0, "20"},
    {1.0, 0.5, "110"},
    {0.5, 1.0, "620"},
    {0.0, 0.5, "3.4K"},
}};

QColor rightPink(double opacity = 1.0) {
    return rgb(1.0, 0.3, 0.6, opacity);
}

// The half-rings leave a 14.4-degree opening at the top and the bottom.
constexpr double leftRingFrom = 97.2;
constexpr double rightRingFrom = -82.8;
constexpr double ringSweep = 165.6;

TextStyle rimStyle() {
    return {systemFont(7, FontWeight::medium, FontDesign::monospaced), grey(1.0, 0.3)};
}

// Room the rim labels need beside the rim: they stand 11 points out, and the left and right ones
// are wider than they are tall, so a narrow plate shrinks the rim to keep them whole.
double sideRoom() {
    double widest = 0;
    for (const RimLabel& label : rimLabels)
        if (label.y == 0.5)
            widest = std::max(widest, textWidth(QString::fromLatin1(label.text), rimStyle()));
    return 11 + widest / 2 + 2;
}

}  // namespace

PulsarComboView::Geometry PulsarComboView::geometryFor(const QSizeF& size) {
    const double outer = std::min(size.width() / 2 - sideRoom(), size.height() / 2 - 18);
    const double core = 0.3 * outer;
    const double inner = core + 8;
    return {QPointF(size.width() / 2, size.height() / 2), outer, core, inner, outer - inner};
}

double PulsarComboView::spokeAngle(std::size_t band, std::size_t count) {
    return static_cast<double>(band) * 360.0 / static_cast<double>(count) - 90.0;
}

void PulsarComboView::setValues(const MeterValues& values) {
    levels_ = values.levels;
    peaks_ = values.peaks;
    const double left = clampedLevel(values.left);
    const double right = clampedLevel(values.right);
    coreLevel_.setTarget(clampedLevel((static_cast<double>(values.left) + values.right) / 2.0));
    leftLevel_.setTarget(left);
    rightLevel_.setTarget(right);
}

bool PulsarComboView::step(double dt) {
    coreLevel_.step(dt);
    leftLevel_.step(dt);
    rightLevel_.step(dt);
    return !(coreLevel_.isSettled() && leftLevel_.isSettled() && rightLevel_.isSettled());
}

void PulsarComboView::settle() {
    coreLevel_.settle();
    leftLevel_.settle();
    rightLevel_.settle();
}

void PulsarComboView::paintBackground(QPainter& painter, const QSizeF& size) const {
    const QRectF box(QPointF(), size);
    drawWithShadow(painter, box, {grey(0.0, 0.4), 3, {0, 2}}, [&](QPainter& layer) {
        QRadialGradient plate(box.center(), 420);
        plate.setColorAt(0.0, rgb(0.06, 0.05, 0.14));
        plate.setColorAt(1.0, rgb(0.01, 0.01, 0.04));
        layer.fillPath(continuousRoundedRect(box, 12), plate);
    });
    strokeInside(painter, box, 12, grey(1.0, 0.08), 1);

    const Geometry g = geometryFor(size);
    if (g.outer <= 0) return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(grey(1.0, 0.05), 1));
    for (const double radius :
         {g.innerSpoke + 0.33 * g.span, g.innerSpoke + 0.66 * g.span, g.outer})
        painter.drawEllipse(g.centre, radius, radius);
    for (const RimLabel& label : rimLabels)
        drawText(painter, QString::fromLatin1(label.text), rimStyle(),
                 g.centre + QPointF((g.outer + 11) * (2 * label.x - 1),
                                    (g.outer + 11) * (2 * label.y - 1)));
}

void PulsarComboView::paintSpokes(QPainter& painter, const Geometry& g) const {
    const std::size_t n = levels_.size();
    if (n > 0) {
        double longest = 0;
        for (const float v : levels_)
            longest = std::max(longest, clampedLevel(v));
        const double reach = g.innerSpoke + g.span * longest + 4;
        const QRectF bounds(g.centre.x() - reach, g.centre.y() - reach, 2 * reach, 2 * reach);
        drawWithGlow(painter, bounds, withOpacity(systemCyan(), 0.5), 4, [&](QPainter& layer) {
            for (std::size_t i = 0; i < n; ++i) {
                const double length = g.span * clampedLevel(levels_[i]);
                if (length <= 0.5) continue;
                const double hue = 0.52 + 0.35 * static_cast<double>(i) /
                                              static_cast<double>(std::max<std::size_t>(n - 1, 1));
                const double angle = spokeAngle(i, n);
                drawRoundStroke(layer,
                                {polarPoint(g.centre, g.innerSpoke, angle),
                                 polarPoint(g.centre, g.innerSpoke + length, angle)},
                                3, QColor::fromHsvF(static_cast<float>(hue), 0.85f, 1.0f));
            }
        });
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(grey(1.0, 0.8));
    const std::size_t m = peaks_.size();
    for (std::size_t i = 0; i < m; ++i) {
        if (!(peaks_[i] > 0.04f)) continue;
        const double reach = g.innerSpoke + g.span * std::min(static_cast<double>(peaks_[i]), 1.0);
        painter.drawEllipse(polarPoint(g.centre, reach, spokeAngle(i, m)), 1.5, 1.5);
    }
}

void PulsarComboView::paintHalfRing(QPainter& painter, const Geometry& g, double level,
                                    double fromDegrees, const QColor& colour) const {
    const double radius = 0.95 * g.core;
    const double width = 2 + 9 * level;
    const double reach = radius + width + 3 + 8 * level;
    painter.save();
    painter.setOpacity(0.3 + 0.7 * level);
    drawWithGlow(
        painter, QRectF(g.centre.x() - reach, g.centre.y() - reach, 2 * reach, 2 * reach),
        withOpacity(colour, 0.8), 3 + 8 * level, [&](QPainter& layer) {
            layer.setBrush(Qt::NoBrush);
            layer.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap));
            layer.drawPath(arcPath(g.centre, radius, fromDegrees, fromDegrees + ringSweep));
        });
    painter.restore();
}

void PulsarComboView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    const Geometry g = geometryFor(size);
    if (g.outer <= 0) return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    paintSpokes(painter, g);

    const double coreEnd = (0.45 + 0.55 * std::clamp(coreLevel_.value(), 0.0, 1.0)) * g.core;
    QRadialGradient core(g.centre, std::max(coreEnd, 0.01));
    core.setColorAt(0.0, grey(1.0, 0.9));
    core.setColorAt(0.5, withOpacity(systemCyan(), 0.45));
    core.setColorAt(1.0, Qt::transparent);
    painter.setPen(Qt::NoPen);
    painter.setBrush(core);
    painter.drawEllipse(g.centre, g.core, g.core);

    paintHalfRing(painter, g, std::clamp(leftLevel_.value(), 0.0, 1.0), leftRingFrom, systemCyan());
    paintHalfRing(painter, g, std::clamp(rightLevel_.value(), 0.0, 1.0), rightRingFrom,
                  rightPink());

    const QFont letters = systemFont(9, FontWeight::semibold, FontDesign::monospaced);
    drawText(painter, QStringLiteral("L"), {letters, withOpacity(systemCyan(), 0.8)},
             g.centre - QPointF(0.45 * g.core, 0));
    drawText(painter, QStringLiteral("R"), {letters, rightPink(0.8)},
             g.centre + QPointF(0.45 * g.core, 0));
    painter.restore();
}

}  // namespace corvanel::meters
