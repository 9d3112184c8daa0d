#pragma once
// The system font in the weights and designs the meters name. On macOS these are the platform's
// own faces; elsewhere the faces the project installs stand in for them (Inter for the standard
// design, JetBrains Mono for monospaced, DejaVu Serif for serif, Quicksand for rounded).
#include <QFont>
#include <QString>

namespace corvanel::meters {

enum class FontWeight { regular, medium, semibold, bold };
enum class FontDesign { standard, monospaced, serif, rounded };

// `size` is in points of the drawing (the em height in the painter's units).
QFont systemFont(int size, FontWeight weight, FontDesign design = FontDesign::standard,
                 double letterSpacing = 0.0);

}  // namespace corvanel::meters
