#pragma once
// The LED colours shared by the spectrum analyzer and the bar meter: green, then amber above 60 %
// of the ladder, red above 82 %.
#include <QColor>

#include "meters/kit/Colors.h"

namespace corvanel::meters {

inline QColor ledGreen() {
    return rgb(0.25, 0.95, 0.38);
}
inline QColor ledAmber() {
    return rgb(1.00, 0.72, 0.15);
}
inline QColor ledRed() {
    return rgb(1.00, 0.23, 0.19);
}

inline constexpr double unlitOpacity = 0.12;

// Colour of the segment whose top lies at `fraction` of the ladder.
inline QColor ledColour(double fraction) {
    if (fraction > 0.82) return ledRed();
    if (fraction > 0.60) return ledAmber();
    return ledGreen();
}

}  // namespace corvanel::meters
