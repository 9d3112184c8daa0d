#include "app/AppStyle.h"

#include "meters/kit/SystemFonts.h"

namespace corvanel::style {

using meters::FontDesign;
using meters::FontWeight;
using meters::systemFont;

QColor accent() {
    return QColor(0x0a, 0x84, 0xff);
}
QColor secondary() {
    return QColor(0x98, 0x98, 0x9d);
}
QColor green() {
    return QColor(0x30, 0xd1, 0x58);
}
QColor orange() {
    return QColor(0xff, 0x9f, 0x0a);
}
QColor red() {
    return QColor(0xff, 0x45, 0x3a);
}

QFont headline() {
    return systemFont(13, FontWeight::semibold);
}
QFont titleSemibold() {
    return fixedDigits(22, true);
}
QFont callout() {
    return systemFont(12, FontWeight::regular);
}
QFont caption() {
    return systemFont(10, FontWeight::regular);
}
QFont caption2() {
    return systemFont(9, FontWeight::regular);
}
QFont monospacedSmall() {
    return systemFont(10, FontWeight::regular, FontDesign::monospaced);
}

QFont fixedDigits(int size, bool semibold) {
    return systemFont(size, semibold ? FontWeight::semibold : FontWeight::regular);
}

QPalette darkPalette() {
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x26, 0x26, 0x2b));
    palette.setColor(QPalette::WindowText, QColor(0xf2, 0xf2, 0xf7));
    palette.setColor(QPalette::Base, QColor(0x1c, 0x1c, 0x21));
    palette.setColor(QPalette::AlternateBase, QColor(0x2c, 0x2c, 0x31));
    palette.setColor(QPalette::Text, QColor(0xf2, 0xf2, 0xf7));
    palette.setColor(QPalette::Button, QColor(0x3a, 0x3a, 0x3f));
    palette.setColor(QPalette::ButtonText, QColor(0xf2, 0xf2, 0xf7));
    palette.setColor(QPalette::Highlight, accent());
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Mid, QColor(0x58, 0x58, 0x5e));
    palette.setColor(QPalette::Dark, QColor(0x18, 0x18, 0x1c));
    palette.setColor(QPalette::Light, QColor(0x4a, 0x4a, 0x50));
    palette.setColor(QPalette::ToolTipBase, QColor(0x3a, 0x3a, 0x3f));
    palette.setColor(QPalette::ToolTipText, QColor(0xf2, 0xf2, 0xf7));
    palette.setColor(QPalette::PlaceholderText, secondary());
    palette.setColor(QPalette::Disabled, QPalette::WindowText, secondary());
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, secondary());
    return palette;
}

}  // namespace corvanel::style
