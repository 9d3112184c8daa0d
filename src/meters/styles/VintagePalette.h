#pragma once
// The one colour the Vintage console's meter and analyzer share: the red of its scale and bars.
#include <QColor>

#include "meters/kit/Colors.h"

namespace corvanel::meters {

inline QColor vintageRed(double opacity = 1.0) {
    return rgb(0.82, 0.10, 0.07, opacity);
}

}  // namespace corvanel::meters
