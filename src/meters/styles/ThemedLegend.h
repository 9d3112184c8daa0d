#pragma once
// The legend of the magma and lightning meters: a row 12 points in from the sides and 9 points
// down from the top, with the channel name on the left (10-point bold serif) and "VU" on the
// right (11-point bold serif).
#include <array>

#include <QColor>
#include <QPainter>
#include <QSizeF>
#include <QString>

namespace corvanel::meters {

// The percent scale beside the magma and lightning channels; its 100 mark is drawn hot.
struct PercentMark {
    double position;
    const char* label;
    bool hot;
};

inline constexpr std::array<PercentMark, 5> themedPercentScale{{
    {0.0, "0", false},
    {0.25, "25", false},
    {0.5, "50", false},
    {0.75, "75", false},
    {1.0, "100", true},
}};

void drawThemedLegend(QPainter& painter, const QSizeF& size, const QString& channel,
                      const QColor& colour);

}  // namespace corvanel::meters
