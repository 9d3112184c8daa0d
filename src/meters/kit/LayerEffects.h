#pragma once
// Layer filters for the meters: drop shadow, glow (a shadow with no offset, so everything in the
// layer glows) and Gaussian blur. The layer is drawn into an offscreen image at the painter's
// pixel scale, blurred (BoxBlur.h) and composited back. Radii are in points and act as twice the
// Gaussian's standard deviation.
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <functional>

namespace corvanel::meters {

using LayerContent = std::function<void(QPainter&)>;

struct Shadow {
    QColor colour;
    double radius = 0.0;
    QPointF offset;
};

// Draws `content` (in the painter's current coordinates, confined to `bounds`) with a shadow
// beneath it.
void drawWithShadow(QPainter& painter, const QRectF& bounds, const Shadow& shadow,
                    const LayerContent& content);

// Glow(c, r): the layer with a shadow of colour c, blur radius r and no offset.
void drawWithGlow(QPainter& painter, const QRectF& bounds, const QColor& colour, double radius,
                  const LayerContent& content);

// Blur(r): the layer itself drawn through a Gaussian blur.
void drawBlurred(QPainter& painter, const QRectF& bounds, double radius,
                 const LayerContent& content);

// The shadow a layer image casts: its coverage blurred by `sigma` pixels, tinted with `colour`.
// A wide shadow comes back at a reduced resolution: draw it stretched over the layer's area.
QImage shadowImage(const QImage& layer, const QColor& colour, double sigma);

// Device pixels per point of the painter's current coordinates.
double pixelScale(const QPainter& painter);

}  // namespace corvanel::meters
