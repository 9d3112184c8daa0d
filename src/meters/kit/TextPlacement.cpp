#include "meters/kit/TextPlacement.h"

#include <QFontMetricsF>
#include <algorithm>

namespace corvanel::meters {

namespace {

double widestDigit(const QFontMetricsF& metrics) {
    double widest = 0.0;
    for (char digit = '0'; digit <= '9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

}  // namespace

double textWidth(const QString& text, const TextStyle& style) {
    const QFontMetricsF metrics(style.font);
    if (!style.fixedWidthDigits) return metrics.horizontalAdvance(text);
    const double cell = widestDigit(metrics);
    double width = 0.0;
    for (const QChar c : text)
        width += c.isDigit() ? cell : metrics.horizontalAdvance(c);
    return width;
}

double textHeight(const TextStyle& style) {
    const QFontMetricsF metrics(style.font);
    return metrics.ascent() + metrics.descent();
}

void drawText(QPainter& painter, const QString& text, const TextStyle& style, QPointF anchor,
              HorizontalAnchor horizontal, VerticalAnchor vertical) {
    if (text.isEmpty()) return;
    const QFontMetricsF metrics(style.font);
    const double width = textWidth(text, style);
    double x = anchor.x();
    if (horizontal == HorizontalAnchor::centre) x -= width / 2.0;
    if (horizontal == HorizontalAnchor::right) x -= width;
    double baseline = anchor.y() + metrics.ascent();
    if (vertical == VerticalAnchor::centre)
        baseline = anchor.y() + (metrics.ascent() - metrics.descent()) / 2.0;
    if (vertical == VerticalAnchor::bottom) baseline = anchor.y() - metrics.descent();

    painter.save();
    painter.setFont(style.font);
    painter.setPen(style.colour);
    if (!style.fixedWidthDigits) {
        painter.drawText(QPointF(x, baseline), text);
    } else {
        // Digits are centred in equal cells; everything else keeps its own advance.
        const double cell = widestDigit(metrics);
        for (const QChar c : text) {
            const double advance = metrics.horizontalAdvance(c);
            const double slot = c.isDigit() ? cell : advance;
            painter.drawText(QPointF(x + (slot - advance) / 2.0, baseline), QString(c));
            x += slot;
        }
    }
    painter.restore();
}

}  // namespace corvanel::meters
