#pragma once
// Two flexible rows stacked vertically with a fixed space between them get equal shares of the
// height; row heights are whole points so cached layers stay on the pixel grid.
#include <QPainter>
#include <QSizeF>
#include <cmath>

namespace corvanel::meters {

struct StackRows {
    double firstHeight;
    double secondTop;
    double secondHeight;
};

inline StackRows equalRows(double height, double spacing) {
    const double first = std::floor((height - spacing) / 2.0);
    return {first, first + spacing, height - first - spacing};
}

}  // namespace corvanel::meters
