#pragma once
// The Inferno style's palette.
#include <QColor>

#include "meters/kit/Colors.h"

namespace corvanel::meters::Lava {

inline QColor deep(double opacity = 1.0) {
    return rgb(0.45, 0.05, 0.02, opacity);
}
inline QColor red(double opacity = 1.0) {
    return rgb(0.92, 0.18, 0.04, opacity);
}
inline QColor orange(double opacity = 1.0) {
    return rgb(1.0, 0.55, 0.1, opacity);
}
inline QColor hot(double opacity = 1.0) {
    return rgb(1.0, 0.9, 0.55, opacity);
}
inline QColor ash(double opacity = 1.0) {
    return rgb(0.85, 0.78, 0.72, opacity);
}

}  // namespace corvanel::meters::Lava
