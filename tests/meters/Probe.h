#pragma once
// Rendering a meter into an image and reading colours back where its geometry puts something.
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QSizeF>
#include <algorithm>
#include <cmath>
#include <functional>

namespace corvanel::meters::probe {

inline QImage render(const QSizeF& size, const std::function<void(QPainter&)>& paint,
                     double scale = 1.0, QColor background = Qt::transparent) {
    QImage image(static_cast<int>(std::ceil(size.width() * scale)),
                 static_cast<int>(std::ceil(size.height() * scale)),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(background);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paint(painter);
    return image;
}

// Colour at a point given in points (not pixels).
inline QColor at(const QImage& image, QPointF point) {
    const double scale = image.devicePixelRatio();
    return image.pixelColor(static_cast<int>(std::floor(point.x() * scale)),
                            static_cast<int>(std::floor(point.y() * scale)));
}

inline bool near(const QColor& actual, const QColor& expected, int tolerance = 18) {
    return std::abs(actual.red() - expected.red()) <= tolerance &&
           std::abs(actual.green() - expected.green()) <= tolerance &&
           std::abs(actual.blue() - expected.blue()) <= tolerance;
}

inline double brightness(const QColor& c) {
    return (c.red() + c.green() + c.blue()) / 3.0;
}

// The brightest of the pixels within `reach` points left and right of `point`, for lines that
// wander about their nominal place.
inline double brightestAcross(const QImage& image, QPointF point, double reach) {
    double best = 0;
    for (double dx = -reach; dx <= reach; dx += 1.0 / image.devicePixelRatio())
        best = std::max(best, brightness(at(image, point + QPointF(dx, 0))));
    return best;
}

inline QColor rgbColour(double r, double g, double b) {
    return QColor::fromRgbF(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b));
}

}  // namespace corvanel::meters::probe

namespace corvanel::meters::probe {

// The LED colours by name, for telling segments apart under the glass sheen.
enum class Led { dark, green, amber, red, orange, yellow };

inline Led classify(const QColor& c) {
    if (brightness(c) < 70 && std::max({c.red(), c.green(), c.blue()}) < 110) return Led::dark;
    struct Named {
        Led led;
        QColor colour;
    };
    const Named palette[] = {
        {Led::green, rgbColour(0.25, 0.95, 0.38)},  {Led::amber, rgbColour(1.00, 0.72, 0.15)},
        {Led::red, rgbColour(1.00, 0.23, 0.19)},    {Led::orange, rgbColour(1.0, 0.584, 0.0)},
        {Led::yellow, rgbColour(0.98, 0.93, 0.10)},
    };
    Led best = Led::dark;
    int bestDistance = 1 << 30;
    for (const Named& n : palette) {
        const int d = (c.red() - n.colour.red()) * (c.red() - n.colour.red()) +
                      (c.green() - n.colour.green()) * (c.green() - n.colour.green()) +
                      (c.blue() - n.colour.blue()) * (c.blue() - n.colour.blue());
        if (d < bestDistance) {
            bestDistance = d;
            best = n.led;
        }
    }
    return best;
}

}  // namespace corvanel::meters::probe
