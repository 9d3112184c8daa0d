#include "meters/styles/StormVUMeterView.h"

#include <QLinearGradient>
#include <QRadialGradient>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "meters/kit/ContinuousRect.h"
#include "meters/kit/LayerEffects.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/Noise.h"
#include "meters/kit/RoundStroke.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"
#include "meters/styles/Storm.h"
#include "meters/styles/StormBackdrop.h"
#include "meters/styles/ThemedLegend.h"

namespace corvanel::meters {

namespace {

constexpr double canvasInset = 6.0;

struct Track {
    double left, length, axis;
};

Track trackFor(const QSizeF& canvas) {
    const double left = 0.07 * canvas.width();
    return {left, canvas.width() - 2 * left, 0.48 * canvas.height()};
}

QPainterPath canvasClip(const QSizeF& size) {
    return continuousRoundedRect(QRectF(QPointF(), size).adjusted(2, 2, -2, -2), 8);
}

}  // namespace

StormVUMeterView::StormVUMeterView(QString channel) : channel_(std::move(channel)) {}

void StormVUMeterView::setLevel(float level) {
    level_ = clampedLevel(level);
}

int StormVUMeterView::forkCount(double level) {
    return std::min(static_cast<int>(std::trunc(5 * clampedLevel(level))), 4);
}

std::int64_t StormVUMeterView::key() const {
    return static_cast<std::int64_t>(std::trunc(30 * level_)) +
           (channel_ == QLatin1String("L") ? 0 : 500);
}

QPolygonF StormVUMeterView::bolt(const QSizeF& canvas) const {
    const Track track = trackFor(canvas);
    const double end = track.left + track.length * level_;
    const std::int64_t q = key();
    QPolygonF points;
    for (int k = 0; k <= 16; ++k) {
        // Pinned near the axis at both ends, wandering most in the middle.
        const double wander = 0.1 * std::sin(std::numbers::pi * k / 16) + 0.02;
        points << QPointF(track.left + (end - track.left) * k / 16,
                          track.axis + wander * canvas.height() * noise(q, k));
    }
    return points;
}

void StormVUMeterView::paintBackground(QPainter& painter, const QSizeF& size) const {
    StormBackdrop::paint(painter, size);
    const QSizeF canvas = size - QSizeF(2 * canvasInset, 2 * canvasInset);
    painter.save();
    painter.setClipPath(canvasClip(size));
    painter.translate(canvasInset, canvasInset);
    const Track track = trackFor(canvas);
    const double h = canvas.height();
    for (const PercentMark& mark : themedPercentScale) {
        const double x = track.left + track.length * mark.position;
        const QColor colour = mark.hot ? Storm::ember() : Storm::silver();
        painter.setPen(QPen(withOpacity(colour, 0.7), 1));
        painter.drawLine(QPointF(x, 0.68 * h), QPointF(x, 0.74 * h));
        drawText(
            painter, QString::fromLatin1(mark.label),
            {systemFont(7, FontWeight::medium, FontDesign::monospaced), withOpacity(colour, 0.8)},
            QPointF(x, 0.82 * h));
    }
    painter.setPen(QPen(Storm::silver(0.1), 1));
    painter.drawLine(QPointF(track.left, track.axis),
                     QPointF(track.left + track.length, track.axis));
    painter.restore();
    drawThemedLegend(painter, size, channel_, Storm::silver());
}

void StormVUMeterView::paintBolt(QPainter& painter, const QSizeF& canvas) const {
    const double L = level_;
    if (L <= 0.02) return;
    const Track track = trackFor(canvas);
    const double h = canvas.height();
    const double end = track.left + track.length * L;
    const std::int64_t q = key();
    const QPolygonF points = bolt(canvas);

    const double originRadius = 10 * L + 6;
    QRadialGradient origin(QPointF(track.left, track.axis), originRadius);
    origin.setColorAt(0.0, Qt::white);
    origin.setColorAt(1.0 / 3, Storm::electric(0.8));
    origin.setColorAt(2.0 / 3, Storm::electric(0.25));
    origin.setColorAt(1.0, Qt::transparent);
    painter.setPen(Qt::NoPen);
    painter.setBrush(origin);
    painter.drawEllipse(QPointF(track.left, track.axis), originRadius, originRadius);

    const QPointF gradientStart(track.left, 0);
    const QPointF gradientEnd(std::max(track.left + 1, end), 0);
    QLinearGradient glow(gradientStart, gradientEnd);
    glow.setColorAt(0.0, Storm::electric());
    glow.setColorAt(0.7, Storm::electric(0.8));
    glow.setColorAt(1.0, Storm::electric(0.1));
    QLinearGradient core(gradientStart, gradientEnd);
    core.setColorAt(0.0, Qt::white);
    core.setColorAt(0.7, grey(1.0, 0.9));
    core.setColorAt(1.0, Storm::electric(0.15));

    const QRectF boltBox = points.boundingRect().adjusted(-8, -8, 8, 8);
    drawBlurred(painter, boltBox, 6, [&](QPainter& layer) {
        drawRoundStroke(layer, points, 4 * L + 6, Storm::electric(0.45));
    });
    drawBlurred(painter, boltBox, 1.5,
                [&](QPainter& layer) { drawRoundStroke(layer, points, 1.6 * L + 2.2, glow); });
    drawRoundStroke(painter, points, 1.2, core);

    std::vector<QPolygonF> forks;
    for (int b = 0; b < forkCount(L); ++b) {
        const QPointF start = points[std::min(3 + 4 * b, 14)];
        const double direction = noise(q, 300 + b) >= 0 ? 1.0 : -1.0;
        const QPointF finish(
            start.x() + (end - track.left) * (0.12 + 0.05 * (noise(q, 310 + b) + 1)),
            start.y() + direction * h * (0.09 + 0.04 * (noise(q, 320 + b) + 1)));
        QPolygonF fork{start};
        for (int j = 1; j <= 3; ++j)
            fork << start + (finish - start) * (j / 4.0) + QPointF(0.03 * h * noise(q + b, j), 0);
        fork << finish;
        forks.push_back(fork);
    }
    if (!forks.empty()) {
        // The forks' soft halos share one blurred layer; they rarely overlap.
        QRectF forkBox;
        for (const QPolygonF& fork : forks)
            forkBox |= fork.boundingRect();
        drawBlurred(painter, forkBox.adjusted(-3, -3, 3, 3), 1, [&](QPainter& layer) {
            for (const QPolygonF& fork : forks)
                drawRoundStroke(layer, fork, 1.1, Storm::electric(0.55));
        });
        for (const QPolygonF& fork : forks)
            drawRoundStroke(painter, fork, 0.6, grey(1.0, 0.45));
    }

    if (L > 0.9) {
        const double u = (L - 0.9) / 0.1;
        const QPointF tip = points.back();
        QRadialGradient flare(tip, 15);
        flare.setColorAt(0.0, grey(1.0, 0.9 * u));
        flare.setColorAt(0.5, Storm::electric(0.6 * u));
        flare.setColorAt(1.0, Qt::transparent);
        painter.setPen(Qt::NoPen);
        painter.setBrush(flare);
        painter.drawEllipse(QRectF(tip.x() - 12, tip.y() - 12, 24, 24));
    }
}

void StormVUMeterView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(canvasClip(size));
    painter.translate(canvasInset, canvasInset);
    paintBolt(painter, size - QSizeF(2 * canvasInset, 2 * canvasInset));
    painter.restore();
}

}  // namespace corvanel::meters
