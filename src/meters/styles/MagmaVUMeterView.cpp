#include "meters/styles/MagmaVUMeterView.h"

#include <QLinearGradient>
#include <QRadialGradient>
#include <cmath>

#include "meters/kit/ContinuousRect.h"
#include "meters/kit/LayerEffects.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/Noise.h"
#include "meters/kit/RoundStroke.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"
#include "meters/styles/InfernoBackdrop.h"
#include "meters/styles/Lava.h"
#include "meters/styles/ThemedLegend.h"

namespace corvanel::meters {

namespace {

constexpr double canvasInset = 6.0;

struct Channel {
    double top, bottom, span, centre, halfWidth;
};

Channel channelFor(const QSizeF& canvas) {
    const double top = 0.12 * canvas.height();
    const double bottom = 0.88 * canvas.height();
    return {top, bottom, bottom - top, 0.42 * canvas.width(), 0.09 * canvas.width()};
}

}  // namespace

MagmaVUMeterView::MagmaVUMeterView(QString channel) : channel_(std::move(channel)) {}

void MagmaVUMeterView::setLevel(float level) {
    level_ = clampedLevel(level);
}

QPolygonF MagmaVUMeterView::channelOutline(const QSizeF& size) {
    const Channel c = channelFor(size);
    const double w = size.width();
    QPolygonF outline;
    const auto rowY = [&](int j) { return (c.top - 4) + (c.span + 8) * j / 9.0; };
    for (int j = 0; j <= 9; ++j)
        outline << QPointF(c.centre - c.halfWidth + 0.025 * w * noise(11, j), rowY(j));
    for (int j = 9; j >= 0; --j)
        outline << QPointF(c.centre + c.halfWidth + 0.025 * w * noise(12, j), rowY(j));
    return outline;
}

void MagmaVUMeterView::paintBackground(QPainter& painter, const QSizeF& size) const {
    InfernoBackdrop::paint(painter, size);
    const QSizeF canvas = size - QSizeF(2 * canvasInset, 2 * canvasInset);
    painter.save();
    painter.setClipPath(continuousRoundedRect(QRectF(QPointF(), size).adjusted(2, 2, -2, -2), 8));
    painter.translate(canvasInset, canvasInset);
    const Channel c = channelFor(canvas);
    const double w = canvas.width();
    for (const PercentMark& mark : themedPercentScale) {
        const double y = c.bottom - c.span * mark.position;
        const QColor colour = mark.hot ? Lava::orange() : Lava::ash();
        painter.setPen(QPen(withOpacity(colour, 0.7), 1));
        painter.drawLine(QPointF(0.72 * w, y), QPointF(0.76 * w, y));
        drawText(
            painter, QString::fromLatin1(mark.label),
            {systemFont(7, FontWeight::medium, FontDesign::monospaced), withOpacity(colour, 0.8)},
            QPointF(0.84 * w, y));
    }
    painter.setPen(QPen(rgb(0, 0, 0, 0.8), 1.5));
    painter.setBrush(rgb(0.03, 0.01, 0.01));
    painter.drawPolygon(channelOutline(canvas));
    painter.restore();
    drawThemedLegend(painter, size, channel_, Lava::ash());
}

void MagmaVUMeterView::paintLava(QPainter& painter, const QSizeF& canvas) const {
    const double L = level_;
    if (L <= 0.02) return;
    const Channel c = channelFor(canvas);
    const double surface = c.bottom - c.span * L;
    const std::int64_t key =
        static_cast<std::int64_t>(std::trunc(30 * L)) + (channel_ == QLatin1String("L") ? 0 : 500);
    const QRectF channelBox = channelOutline(canvas).boundingRect();

    drawWithGlow(painter, channelBox, Lava::orange(0.8), 6 * L + 4, [&](QPainter& layer) {
        QPainterPath clip;
        clip.addPolygon(channelOutline(canvas));
        layer.setClipPath(clip);
        QLinearGradient heat(QPointF(0, c.top), QPointF(0, c.bottom));
        heat.setColorAt(0.0, Lava::hot());
        heat.setColorAt(1.0 / 3, Lava::orange());
        heat.setColorAt(2.0 / 3, Lava::red());
        heat.setColorAt(1.0, Lava::deep());
        layer.fillRect(QRectF(QPointF(c.centre - 1.5 * c.halfWidth, surface),
                              QPointF(c.centre + 1.5 * c.halfWidth, c.bottom + 6)),
                       heat);
    });

    QPolygonF crust{QPointF(c.centre - c.halfWidth, surface)};
    for (int j = 1; j <= 5; ++j)
        crust << QPointF(c.centre - c.halfWidth + 2 * c.halfWidth * j / 6.0 + 2.5 * noise(key, j),
                         surface);
    crust << QPointF(c.centre + c.halfWidth, surface);
    const QRectF crustBox = crust.boundingRect().adjusted(-4, -4, 4, 4);
    drawWithGlow(painter, crustBox, Lava::hot(0.9), 5 * L + 3,
                 [&](QPainter& layer) { drawRoundStroke(layer, crust, L + 1.5, Lava::hot(0.9)); });

    painter.setPen(Qt::NoPen);
    if (L > 0.35) {
        painter.setBrush(Lava::orange(0.5 * L + 0.4));
        for (int m = 0; m < 4; ++m) {
            const double r = 1 + 0.8 * (noise(key, 80 + m) + 1);
            const QPointF centre(c.centre + 1.8 * c.halfWidth * noise(key, 60 + m),
                                 surface - (16 * L * (noise(key, 70 + m) + 1) + 4));
            painter.drawEllipse(centre, r, r);
        }
    }
    if (L > 0.9) {
        const double u = (L - 0.9) / 0.1;
        QRadialGradient spot(QPointF(c.centre, surface), 18);
        spot.setColorAt(0.0, Lava::hot(0.9 * u));
        spot.setColorAt(0.5, Lava::orange(0.5 * u));
        spot.setColorAt(1.0, Qt::transparent);
        painter.setBrush(spot);
        painter.drawEllipse(QRectF(c.centre - 16, surface - 12, 32, 22));
    }
}

void MagmaVUMeterView::paint(QPainter& painter, const QSizeF& size) {
    background_.draw(painter, size,
                     [this](QPainter& p, const QSizeF& s) { paintBackground(p, s); });
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(continuousRoundedRect(QRectF(QPointF(), size).adjusted(2, 2, -2, -2), 8));
    painter.translate(canvasInset, canvasInset);
    paintLava(painter, size - QSizeF(2 * canvasInset, 2 * canvasInset));
    painter.restore();
}

}  // namespace corvanel::meters
