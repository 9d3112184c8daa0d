#include "meters/styles/ThemedLegend.h"

#include <algorithm>

#include "meters/kit/Colors.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"

namespace corvanel::meters {

void drawThemedLegend(QPainter& painter, const QSizeF& size, const QString& channel,
                      const QColor& colour) {
    const TextStyle name{systemFont(10, FontWeight::bold, FontDesign::serif),
                         withOpacity(colour, 0.9)};
    const TextStyle vu{systemFont(11, FontWeight::bold, FontDesign::serif),
                       withOpacity(colour, 0.7)};
    // Both texts are centred on the row, whose top is 9 points below the view's.
    const double rowCentre = 9 + std::max(textHeight(name), textHeight(vu)) / 2;
    drawText(painter, channel, name, {12, rowCentre}, HorizontalAnchor::left);
    drawText(painter, QStringLiteral("VU"), vu, {size.width() - 12, rowCentre},
             HorizontalAnchor::right);
}

}  // namespace corvanel::meters
