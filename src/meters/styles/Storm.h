#pragma once
// The Valhalla style's palette.
#include <QColor>

#include "meters/kit/Colors.h"

namespace corvanel::meters::Storm {

inline QColor electric(double opacity = 1.0) {
    return rgb(0.6, 0.78, 1.0, opacity);
}
inline QColor silver(double opacity = 1.0) {
    return rgb(0.82, 0.86, 0.92, opacity);
}
inline QColor ember(double opacity = 1.0) {
    return rgb(1.0, 0.55, 0.2, opacity);
}

}  // namespace corvanel::meters::Storm
