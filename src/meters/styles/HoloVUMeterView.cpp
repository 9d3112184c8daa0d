#include "meters/styles/HoloVUMeterView.h"

#include <QConicalGradient>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>

#include "meters/kit/Colors.h"
#include "meters/kit/DialGeometry.h"
#include "meters/kit/LayerEffects.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"
#include "meters/styles/HoloGlassPanel.h"

namespace corvanel::meters {

namespace {

constexpr double gaugeInset = 13.0;
constexpr double arcWidth = 9.0;
constexpr double fullSweep = 2.0 / 3.0;  // of the circle: 240 degrees

struct Gauge {
    QPointF centre;
    double radius;
};

Gauge gaugeFor(const QSizeF& size) {
    const QRectF area =
        QRectF(QPointF(), size).adjusted(gaugeInset, gaugeInset, -gaugeInset, -gaugeInset);
    return {area.center(), std::max(0.0, std::min(area.width(), area.height()) / 2)};
}

// The arc between two fractions of the whole circle, counted clockwise from 150 degrees.
QPainterPath gaugeArc(const Gauge& gauge, double from, double to) {
    return arcPath(gauge.centre, gauge.radius, 150 + 360 * from, 150 + 360 * to);
}

QPen arcPen(const QBrush& brush) {
    return QPen(brush, arcWidth, Qt::SolidLine, Qt::RoundCap);
}

}  // namespace

HoloVUMeterView::HoloVUMeterView(QString channel)
    : SpringNeedleMeter(0.3, 0.55), channel_(std::move(channel)) {}

const QGradientStops& HoloVUMeterView::neonGradient() {
    static const QGradientStops stops = {{0.0, systemCyan()},
                                         {1.0 / 3, rgb(0.35, 0.45, 1.0)},
                                         {2.0 / 3, rgb(0.75, 0.3, 1.0)},
                                         {1.0, rgb(1.0, 0.25, 0.55)}};
    return stops;
}

QString HoloVUMeterView::vuReadout(float level) {
    static constexpr std::array<std::array<float, 2>, 5> breakpoints{
        {{0.0f, -20.0f}, {0.3f, -10.0f}, {0.55f, -5.0f}, {0.78f, 0.0f}, {1.0f, 3.0f}}};
    const float l = std::isnan(level) ? 0.0f : std::clamp(level, 0.0f, 1.0f);
    std::size_t segment = 3;
    if (l <= 0.3f)
        segment = 0;
    else if (l <= 0.55f)
        segment = 1;
    else if (l <= 0.78f)
        segment = 2;
    const auto [x0, y0] = breakpoints[segment];
    const auto [x1, y1] = breakpoints[segment + 1];
    const float decibels = y0 + (l - x0) * (y1 - y0) / (x1 - x0);
    return QString::asprintf("%+.1f", static_cast<double>(decibels));
}

void HoloVUMeterView::setLevel(float level) {
    level_ = level;
    SpringNeedleMeter::setLevel(level);
}

void HoloVUMeterView::paintBackground(QPainter& painter, const QSizeF& size) const {
    drawHoloGlassPanel(painter, size);
    const Gauge gauge = gaugeFor(size);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(arcPen(withOpacity(systemCyan(), 0.1)));
    painter.drawPath(gaugeArc(gauge, 0, fullSweep));
    painter.setPen(arcPen(rgb(1.0, 0.2, 0.45, 0.22)));
    painter.drawPath(gaugeArc(gauge, 0.52, fullSweep));
}

void HoloVUMeterView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const Gauge gauge = gaugeFor(size);
    // The spring may overshoot; the arc never runs past the gauge's ends.
    const double sweep = fullSweep * std::clamp(needleLevel_.value(), 0.0, 1.0);
    if (sweep > 0) {
        // A conical gradient turns counter-clockwise on screen from its start angle, so the
        // sweep's clockwise colours are laid out backwards from 210 (= -150) degrees.
        QConicalGradient neon(gauge.centre, 210);
        neon.setColorAt(0.0, systemCyan());
        for (const auto& [position, colour] : neonGradient())
            neon.setColorAt(1.0 - position * fullSweep, colour);
        const QRectF bounds(gauge.centre.x() - gauge.radius - arcWidth,
                            gauge.centre.y() - gauge.radius - arcWidth,
                            2 * (gauge.radius + arcWidth), 2 * (gauge.radius + arcWidth));
        drawWithShadow(painter, bounds, {withOpacity(systemCyan(), 0.7), 5, {0, 0}},
                       [&](QPainter& layer) {
                           layer.setBrush(Qt::NoBrush);
                           layer.setPen(arcPen(neon));
                           layer.drawPath(gaugeArc(gauge, 0, sweep));
                       });
    }

    // Ultra-light is the lightest weight there is (100), one step below thin.
    QFont thin = systemFont(24, FontWeight::regular);
    thin.setWeight(QFont::Thin);
    const TextStyle name{thin, systemCyan()};
    const TextStyle reading{systemFont(8, FontWeight::medium, FontDesign::monospaced),
                            withOpacity(systemCyan(), 0.6), true};
    const double nameHeight = textHeight(name);
    const double top = gauge.centre.y() - (nameHeight + 1 + textHeight(reading)) / 2;
    drawText(painter, channel_, name, {gauge.centre.x(), top}, HorizontalAnchor::centre,
             VerticalAnchor::top);
    drawText(painter, vuReadout(level_) + QStringLiteral(" VU"), reading,
             {gauge.centre.x(), top + nameHeight + 1}, HorizontalAnchor::centre,
             VerticalAnchor::top);
    painter.restore();
}

}  // namespace corvanel::meters
