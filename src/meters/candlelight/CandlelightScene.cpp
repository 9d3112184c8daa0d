#include "meters/candlelight/CandlelightScene.h"

#include <QLinearGradient>
#include <QPainterPath>
#include <QRadialGradient>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "meters/candlelight/CandleRoomLayout.h"
#include "meters/kit/Colors.h"
#include "meters/kit/LayerEffects.h"
#include "meters/kit/Noise.h"
#include "spectrum/SpectrumScale.h"

namespace corvanel::meters {

namespace {

// A flame outline: from the base up to the tip and back, bowed by two quadratic curves whose
// control points sit 0.32 of the height above the base.
QPainterPath flamePath(QPointF base, double height, double halfWidth, double tipOffset,
                       double controlShift) {
    const double controlY = base.y() - 0.32 * height;
    QPainterPath path(base);
    path.quadTo(QPointF(base.x() - halfWidth + controlShift, controlY),
                QPointF(base.x() + tipOffset, base.y() - height));
    path.quadTo(QPointF(base.x() + halfWidth + controlShift, controlY), base);
    path.closeSubpath();
    return path;
}

void fillDisc(QPainter& painter, QPointF centre, double radius, const QRadialGradient& gradient) {
    painter.setBrush(gradient);
    painter.drawEllipse(centre, radius, radius);
}

double fraction(double z) {
    return z - std::trunc(z);
}

}  // namespace

CandlelightScene::CandlelightScene(std::vector<float> levels, double time)
    : levels_(std::move(levels)), time_(time) {}

const std::vector<FlameAnchor>& CandlelightScene::anchors() {
    static const std::vector<FlameAnchor> table = buildFlameAnchors(SpectrumScale::bandCount);
    return table;
}

float CandlelightScene::loudness() const {
    if (levels_.empty()) return 0.0f;
    float sum = 0.0f;
    for (const float level : levels_)
        sum += std::isnan(level) ? 0.0f : std::clamp(level, 0.0f, 1.0f);
    return sum / static_cast<float>(levels_.size());
}

struct CandlelightScene::FlameShape {
    QPointF base;     // on the wick
    double unit;      // u: the flame's unit length
    double strength;  // e: the shaped level
    double height;
    double halfWidth;
    double tipOffset;
};

CandlelightScene::FlameShape CandlelightScene::shapeOf(const FlameAnchor& anchor, QPointF origin,
                                                       QSizeF size) const {
    double level = 0.0;
    if (!levels_.empty()) {
        const auto band = std::min(static_cast<std::size_t>(anchor.band), levels_.size() - 1);
        const double v = levels_[band];
        level = std::min(1.5 * (std::isnan(v) || v < 0 ? 0.0 : v), 1.0);
    }
    const int k = anchor.index;
    const double phase = time_ * (0.8 * (k % 7) + 4.5);
    const double sway = std::sin(phase + std::numbers::pi * noise(k, 9));
    // The jitter jumps when the level crosses a 1/24 step or the phase passes a multiple of 0.5.
    const auto key = static_cast<std::int64_t>(std::trunc(24 * level)) + 31 * anchor.band +
                     static_cast<std::int64_t>(std::trunc(2 * phase));

    const double e = std::pow(level, 0.85);
    const double u = size.height() * anchor.size;
    const double w = u * (0.18 * e + 0.3);
    return {QPointF(origin.x() + size.width() * anchor.x, origin.y() + size.height() * anchor.y),
            u,
            e,
            u * (2.6 * e + 0.55 + 0.2 * noise(key, 5) * (e + 0.4)),
            w,
            (e + 0.6) * (0.3 * sway + 0.15 * noise(key, 6)) * w};
}

void CandlelightScene::paint(QPainter& painter, const QSizeF& size, const QImage& room,
                             CandlelightLayers& layers) const {
    if (room.isNull() || room.width() <= 0 || room.height() <= 0) return;
    const double scale = std::max(size.width() / room.width(), size.height() / room.height());
    const QSizeF drawn(room.width() * scale, room.height() * scale);
    const QPointF origin((size.width() - drawn.width()) / 2, (size.height() - drawn.height()) / 2);

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (layers.roomKey != room.cacheKey()) {
        layers.room.invalidate();
        layers.roomKey = room.cacheKey();
    }
    layers.room.draw(painter, size, [&](QPainter& layer, const QSizeF&) {
        layer.drawImage(QRectF(origin, drawn), room);
    });
    drawSnow(painter, origin, drawn);
    drawLight(painter, size, origin, drawn, layers);
    // Later flames are drawn over earlier ones, so the near, large flames come last.
    for (const FlameAnchor& anchor : anchors())
        drawFlame(anchor, painter, origin, drawn);
    layers.vignette.draw(painter, size, [](QPainter& layer, const QSizeF& area) {
        QRadialGradient vignette(QPointF(area.width() / 2, area.height() / 2),
                                 0.75 * std::max(area.width(), area.height()));
        vignette.setColorAt(0.0, Qt::transparent);
        vignette.setColorAt(0.6, Qt::transparent);
        vignette.setColorAt(1.0, rgb(0, 0, 0, 0.32));
        layer.fillRect(QRectF(QPointF(0, 0), area), vignette);
    });
    painter.restore();
}

void CandlelightScene::drawLight(QPainter& painter, const QSizeF& size, QPointF origin,
                                 QSizeF drawn, CandlelightLayers& layers) const {
    const double pixels = pixelScale(painter) / 4;
    const QSize lightSize(std::max(1, static_cast<int>(std::ceil(size.width() * pixels))),
                          std::max(1, static_cast<int>(std::ceil(size.height() * pixels))));
    if (layers.light.size() != lightSize)
        layers.light = QImage(lightSize, QImage::Format_ARGB32_Premultiplied);
    layers.light.fill(Qt::transparent);
    {
        // Drawn in the buffer's own pixels: an untransformed painter keeps the gradient fills
        // on their fast path.
        QPainter light(&layers.light);
        light.setPen(Qt::NoPen);
        light.setCompositionMode(QPainter::CompositionMode_Plus);
        const QPointF lightOrigin = origin * pixels;
        const QSizeF lightDrawn = drawn * pixels;
        // The room glow's shape depends only on the size; the loudness sets its strength.
        light.setOpacity(0.07 * loudness() + 0.02);
        layers.roomGlow.draw(light, QSizeF(lightSize), [&](QPainter& layer, const QSizeF& area) {
            QRadialGradient glow(
                lightOrigin + QPointF(0.4 * lightDrawn.width(), 0.7 * lightDrawn.height()),
                0.5 * lightDrawn.width());
            glow.setColorAt(0.0, rgb(1.0, 0.55, 0.2));
            glow.setColorAt(1.0, Qt::transparent);
            layer.fillRect(QRectF(QPointF(0, 0), area), glow);
        });
        light.setOpacity(1.0);
        for (const FlameAnchor& anchor : anchors())
            drawGlow(anchor, light, lightOrigin, lightDrawn);
    }
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    painter.drawImage(QRectF(QPointF(0, 0), size), layers.light);
    painter.restore();
}

void CandlelightScene::drawGlow(const FlameAnchor& anchor, QPainter& painter, QPointF origin,
                                QSizeF size) const {
    const FlameShape f = shapeOf(anchor, origin, size);
    const double e = f.strength;
    const double u = f.unit;
    const QPointF centre(f.base.x() + 0.5 * f.tipOffset, f.base.y() - 0.45 * f.height);
    const double outerRadius = u * (3.2 * e + 1.6);
    QRadialGradient outer(centre, outerRadius);
    outer.setColorAt(0.0, rgb(1.0, 0.58, 0.2, 0.26 * e + 0.06));
    outer.setColorAt(0.5, rgb(1.0, 0.42, 0.1, 0.02));
    outer.setColorAt(1.0, Qt::transparent);
    fillDisc(painter, centre, outerRadius, outer);
    const double innerRadius = u * (0.9 * e + 0.6);
    QRadialGradient inner(centre, innerRadius);
    inner.setColorAt(0.0, rgb(1.0, 0.8, 0.45, 0.45 * e + 0.18));
    inner.setColorAt(0.5, rgb(1.0, 0.6, 0.2, 0.06));
    inner.setColorAt(1.0, Qt::transparent);
    fillDisc(painter, centre, innerRadius, inner);
    // Only the candles standing low in the picture are mirrored in the polished floor.
    if (anchor.size >= 0.024 && anchor.y > 0.45) {
        const QRectF mirror(f.base.x() - 1.6 * u, f.base.y() + 4 * u, 3.2 * u, u * (4 * e + 3));
        QLinearGradient fade(mirror.topLeft(), mirror.bottomLeft());
        fade.setColorAt(0.0, rgb(1.0, 0.55, 0.2, 0.12 * e + 0.03));
        fade.setColorAt(1.0, Qt::transparent);
        painter.setBrush(fade);
        painter.drawEllipse(mirror);
    }
}

void CandlelightScene::drawFlame(const FlameAnchor& anchor, QPainter& painter, QPointF origin,
                                 QSizeF size) const {
    const FlameShape f = shapeOf(anchor, origin, size);
    const double h = f.height;
    const double w = f.halfWidth;
    const double d = f.tipOffset;
    QLinearGradient body(f.base, QPointF(f.base.x(), f.base.y() - h));
    body.setColorAt(0.0, rgb(1.0, 0.93, 0.72, 0.95));
    body.setColorAt(0.5, rgb(1.0, 0.7, 0.24, 0.92));
    body.setColorAt(1.0, rgb(0.9, 0.38, 0.06, 0.85));
    painter.setBrush(body);
    painter.drawPath(flamePath(f.base, h, w, d, -0.35 * d));

    painter.setBrush(rgb(1.0, 0.99, 0.92, 0.96));
    painter.drawPath(flamePath(QPointF(f.base.x(), f.base.y() - 0.04 * h), 0.55 * h, 0.45 * w,
                               0.6 * d, -0.175 * d));

    const QPointF rootCentre(f.base.x(), f.base.y() - 0.04 * f.unit);
    QRadialGradient root(rootCentre, w / 2);
    root.setColorAt(0.0, rgb(0.45, 0.55, 1.0, 0.22));
    root.setColorAt(1.0, Qt::transparent);
    painter.setBrush(root);
    painter.drawEllipse(
        QRectF(f.base.x() - w / 2, rootCentre.y() - 0.09 * f.unit, w, 0.18 * f.unit));
}

void CandlelightScene::drawSnow(QPainter& painter, QPointF origin, QSizeF size) const {
    QPainterPath panes;
    for (const QRectF& pane : windowPanes()) {
        panes.addRect(QRectF(origin.x() + size.width() * pane.left(),
                             origin.y() + size.height() * pane.top(), size.width() * pane.width(),
                             size.height() * pane.height()));
    }
    const QRectF box = snowBox();
    const double sx = origin.x() + box.left() * size.width();
    const double sy = origin.y() + box.top() * size.height();
    const double sw = box.width() * size.width();
    const double sh = box.height() * size.height();

    painter.save();
    painter.setClipPath(panes, Qt::IntersectClip);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 70; ++i) {
        const double p1 = (noise(i, 71) + 1) / 2;
        const double p2 = (noise(i, 72) + 1) / 2;
        const double p3 = noise(i, 73);
        const double fy = fraction(7 * p1 + time_ * (0.035 + 0.055 * p2));
        double fx = fraction(p1 + (p2 + 0.4) * std::sin(0.7 * time_ + 10 * p3) * 0.03);
        if (fx < 0) fx += 1;
        const double r = size.height() * (0.0009 + 0.0016 * p2);
        painter.setBrush(rgb(1, 1, 1, 0.28 + 0.42 * p2));
        painter.drawEllipse(QPointF(sx + sw * fx, sy + sh * fy), r, r);
    }
    painter.restore();
}

}  // namespace corvanel::meters
