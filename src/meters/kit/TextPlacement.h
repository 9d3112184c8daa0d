#pragma once
// Placing a line of text by its centre or by one of its edges, as the meters' layouts describe
// it. Optionally every digit takes the width of the widest digit, so changing numbers do not
// shift the text around them.
#include <QColor>
#include <QFont>
#include <QPainter>
#include <QPointF>
#include <QString>

namespace corvanel::meters {

enum class HorizontalAnchor { left, centre, right };
enum class VerticalAnchor { top, centre, bottom };

struct TextStyle {
    QFont font;
    QColor colour;
    bool fixedWidthDigits = false;
};

// Width of the line as drawn; its height is the font's ascent plus descent.
double textWidth(const QString& text, const TextStyle& style);
double textHeight(const TextStyle& style);

// Draws `text` so that the given point of its box (e.g. right edge's middle) lies on `anchor`.
void drawText(QPainter& painter, const QString& text, const TextStyle& style, QPointF anchor,
              HorizontalAnchor horizontal = HorizontalAnchor::centre,
              VerticalAnchor vertical = VerticalAnchor::centre);

}  // namespace corvanel::meters
