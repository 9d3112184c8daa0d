#pragma once
// Colours as the meters describe them: sRGB components from 0 to 1 with a separate opacity.
#include <QColor>

namespace corvanel::meters {

inline QColor rgb(double r, double g, double b, double opacity = 1.0) {
    return QColor::fromRgbF(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b),
                            static_cast<float>(opacity));
}

inline QColor grey(double white, double opacity = 1.0) {
    return rgb(white, white, white, opacity);
}

inline QColor withOpacity(QColor colour, double opacity) {
    colour.setAlphaF(static_cast<float>(colour.alphaF() * opacity));
    return colour;
}

// The platform's standard named colours that some styles use.
inline QColor systemOrange() {
    return rgb(1.0, 0.584, 0.0);
}
inline QColor systemCyan() {
    return rgb(0.196, 0.678, 0.902);
}

}  // namespace corvanel::meters
