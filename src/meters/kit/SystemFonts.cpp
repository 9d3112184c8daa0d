#include "meters/kit/SystemFonts.h"

#include <QFontDatabase>

namespace corvanel::meters {

namespace {

QString familyFor(FontDesign design) {
#ifdef Q_OS_MACOS
    switch (design) {
        case FontDesign::monospaced:
            return QStringLiteral("SF Mono");
        case FontDesign::serif:
            return QStringLiteral("New York");
        case FontDesign::rounded:
            return QStringLiteral("SF Pro Rounded");
        case FontDesign::standard:
            break;
    }
    return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
#else
    switch (design) {
        case FontDesign::monospaced:
            return QStringLiteral("JetBrains Mono");
        case FontDesign::serif:
            return QStringLiteral("DejaVu Serif");
        case FontDesign::rounded:
            return QStringLiteral("Quicksand");
        case FontDesign::standard:
            break;
    }
    return QStringLiteral("Inter");
#endif
}

QFont::StyleHint hintFor(FontDesign design) {
    switch (design) {
        case FontDesign::monospaced:
            return QFont::Monospace;
        case FontDesign::serif:
            return QFont::Serif;
        case FontDesign::rounded:
        case FontDesign::standard:
            break;
    }
    return QFont::SansSerif;
}

QFont::Weight qtWeight(FontWeight weight) {
    switch (weight) {
        case FontWeight::medium:
            return QFont::Medium;
        case FontWeight::semibold:
            return QFont::DemiBold;
        case FontWeight::bold:
            return QFont::Bold;
        case FontWeight::regular:
            break;
    }
    return QFont::Normal;
}

}  // namespace

QFont systemFont(int size, FontWeight weight, FontDesign design, double letterSpacing) {
    QFont font(familyFor(design));
    font.setStyleHint(hintFor(design), QFont::PreferAntialias);
    // Pixel size, not point size: the drawing's units are points already, whatever the device's
    // logical resolution.
    font.setPixelSize(size);
    font.setWeight(qtWeight(weight));
    if (letterSpacing != 0.0) font.setLetterSpacing(QFont::AbsoluteSpacing, letterSpacing);
    return font;
}

}  // namespace corvanel::meters
