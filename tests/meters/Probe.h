#pragma once
// Rendering a meter into an image and reading colours back where its geometry puts something.
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "meters/kit/TextPlacement.h"

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

namespace corvanel::meters::probe {

using InkTest = std::function<bool(const QColor&)>;

// A printed text compared with what a view drew, pixel for pixel. `found`: the share of the
// text's solid pixels (the text set in its font where the numbers put it) that the view inked;
// `stray`: the share of the view's ink inside the text's box that lies off the text. A text in
// its place, spelled as required, finds most of its pixels with little stray ink; one moved by
// a fraction of its height, or spelled otherwise, does not.
struct TextFit {
    double found = 0;
    double stray = 1;
    bool matches() const { return found >= 0.6 && stray <= 0.35; }
};

// Only pixels inside `region` (in points) count when it is given.
inline TextFit fitText(const QImage& view, const QString& text, const TextStyle& style,
                       QPointF anchor, const InkTest& isInk,
                       HorizontalAnchor horizontal = HorizontalAnchor::centre,
                       VerticalAnchor vertical = VerticalAnchor::centre,
                       const QRectF& region = QRectF()) {
    QImage reference(view.size(), QImage::Format_ARGB32_Premultiplied);
    reference.setDevicePixelRatio(view.devicePixelRatio());
    reference.fill(Qt::transparent);
    {
        QPainter painter(&reference);
        painter.setRenderHint(QPainter::Antialiasing);
        drawText(painter, text, {style.font, Qt::black, style.fixedWidthDigits}, anchor, horizontal,
                 vertical);
    }
    const double scale = view.devicePixelRatio();
    const QRect counted = region.isEmpty()
                              ? reference.rect()
                              : QRectF(region.topLeft() * scale, region.size() * scale).toRect();
    int solid = 0, found = 0, ink = 0, stray = 0;
    QRect box;
    for (int y = 0; y < reference.height(); ++y)
        for (int x = 0; x < reference.width(); ++x) {
            if (!counted.contains(x, y)) continue;
            const int alpha = qAlpha(reference.pixel(x, y));
            if (alpha > 0) box |= QRect(x, y, 1, 1);
            if (alpha > 160) {
                ++solid;
                found += isInk(view.pixelColor(x, y)) ? 1 : 0;
            }
        }
    for (int y = box.top(); y <= box.bottom(); ++y)
        for (int x = box.left(); x <= box.right(); ++x)
            if (isInk(view.pixelColor(x, y))) {
                ++ink;
                stray += qAlpha(reference.pixel(x, y)) == 0 ? 1 : 0;
            }
    return {solid == 0 ? 0.0 : double(found) / solid, ink == 0 ? 1.0 : double(stray) / ink};
}

// Whether `text` appears whole somewhere inside `within` (in points): its solid pixels, slid
// over every place where its whole box fits (at whole and half device pixels), are mostly inked
// at some place.
inline bool findsWholeText(const QImage& view, const QString& text, const TextStyle& style,
                           const QRectF& within, const InkTest& isInk) {
    const double scale = view.devicePixelRatio();
    const QRect area =
        QRectF(within.topLeft() * scale, within.size() * scale).toAlignedRect() & view.rect();
    for (const double phaseX : {0.0, 0.5})
        for (const double phaseY : {0.0, 0.5}) {
            QImage glyphs(int(std::ceil(textWidth(text, style) * scale)) + 4,
                          int(std::ceil(textHeight(style) * scale)) + 4,
                          QImage::Format_ARGB32_Premultiplied);
            glyphs.setDevicePixelRatio(scale);
            glyphs.fill(Qt::transparent);
            {
                QPainter painter(&glyphs);
                painter.setRenderHint(QPainter::Antialiasing);
                drawText(painter, text, {style.font, Qt::black},
                         {(2 + phaseX) / scale, (2 + phaseY) / scale}, HorizontalAnchor::left,
                         VerticalAnchor::top);
            }
            std::vector<QPoint> solid;
            QRect box;
            for (int y = 0; y < glyphs.height(); ++y)
                for (int x = 0; x < glyphs.width(); ++x) {
                    const int alpha = qAlpha(glyphs.pixel(x, y));
                    if (alpha > 0) box |= QRect(x, y, 1, 1);
                    if (alpha > 160) solid.emplace_back(x, y);
                }
            const double allowed = 0.2 * double(solid.size());
            for (int oy = area.top() - box.top(); oy + box.bottom() <= area.bottom(); ++oy)
                for (int ox = area.left() - box.left(); ox + box.right() <= area.right(); ++ox) {
                    double missed = 0;
                    for (const QPoint& p : solid) {
                        missed += isInk(view.pixelColor(p.x() + ox, p.y() + oy)) ? 0 : 1;
                        if (missed > allowed) break;
                    }
                    if (!solid.empty() && missed <= allowed) return true;
                }
        }
    return false;
}

inline bool isDark(const QColor& c) {
    return brightness(c) < 100;
}

// Saturated red printing on a warm face: little green next to the red.
inline bool isRedInk(const QColor& c) {
    return c.red() > 120 && c.green() < 0.45 * c.red();
}

// Light grey printing on a dark face.
inline bool isGreyInk(const QColor& c) {
    return brightness(c) > 55 && std::abs(c.red() - c.blue()) < 40 &&
           std::abs(c.red() - c.green()) < 40;
}

}  // namespace corvanel::meters::probe
