#include "app/TrayIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "meters/kit/SystemFonts.h"

namespace corvanel {
namespace {

// In points of the square.
constexpr qreal margin = 0.5;
constexpr qreal barsHeight = 4.5;
constexpr qreal barsGapAbove = 1.5;
constexpr qreal barGap = 1.0;
constexpr qreal haloWidth = 1.2;
constexpr int barCount = 6;
// Digits may be drawn this much narrower than their face before they get smaller.
constexpr qreal narrowest = 0.78;

// The loudest level of each of `barCount` equal runs of bands, low frequencies first.
std::vector<float> trayBars(const std::vector<float>& levels) {
    std::vector<float> bars(barCount, 0.0f);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        float& bar = bars[i * barCount / levels.size()];
        bar = std::max(bar, std::clamp(levels[i], 0.0f, 1.0f));
    }
    return bars;
}

// `text` as outlines, its digits' height filling `area` and its width fitted into it, centred.
QPainterPath digitsFitted(const QString& text, const QRectF& area) {
    const QFont face = meters::systemFont(100, meters::FontWeight::bold);
    QPainterPath reference;
    reference.addText(0, 0, face, QStringLiteral("0"));
    QPainterPath outline;
    outline.addText(0, 0, face, text);
    const QRectF ink = outline.boundingRect();
    const qreal digitHeight = reference.boundingRect().height();
    if (ink.isEmpty() || digitHeight <= 0) return {};

    qreal scaleY = area.height() / digitHeight;
    if (ink.width() * scaleY * narrowest > area.width())
        scaleY = area.width() / (ink.width() * narrowest);
    const qreal scaleX = std::min(scaleY, area.width() / ink.width());
    QTransform place;
    place.translate(area.center().x() - ink.center().x() * scaleX,
                    area.center().y() + digitHeight * scaleY / 2);
    place.scale(scaleX, scaleY);
    return place.map(outline);
}

}  // namespace

QString trayRateText(const QString& title) {
    const qsizetype unit = title.indexOf(QStringLiteral(" kHz"));
    return unit > 0 ? title.left(unit) : title;
}

QImage trayIconImage(const QString& title, const std::optional<std::vector<float>>& levels,
                     const TrayIconColours& colours, qreal pixelRatio) {
    const int pixels = int(std::lround(trayIconPoints * pixelRatio));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const qreal side = trayIconPoints;
    const qreal digitsBottom = levels ? side - margin - barsHeight - barsGapAbove : side - margin;
    QPainterPath shape = digitsFitted(
        trayRateText(title),
        QRectF(margin, margin + haloWidth, side - 2 * margin, digitsBottom - margin - haloWidth));
    if (levels) {
        const std::vector<float> bars = trayBars(*levels);
        const qreal width = (side - 2 * margin - (barCount - 1) * barGap) / barCount;
        for (int j = 0; j < barCount; ++j) {
            const qreal height = std::max(qreal(bars[j]) * barsHeight, 1.0);
            shape.addRect(
                QRectF(margin + j * (width + barGap), side - margin - height, width, height));
        }
    }
    shape.setFillRule(Qt::WindingFill);

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixelRatio, pixelRatio);
    painter.strokePath(
        shape, QPen(colours.halo, 2 * haloWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(shape, colours.ink);
    painter.end();
    image.setDevicePixelRatio(pixelRatio);
    return image;
}

QImage trayIconAtOnePixelPerPoint(const QImage& icon) {
    QImage single = icon.scaled(icon.size() / icon.devicePixelRatio(), Qt::IgnoreAspectRatio,
                                Qt::SmoothTransformation);
    single.setDevicePixelRatio(1.0);
    return single;
}

}  // namespace corvanel
