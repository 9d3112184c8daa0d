#pragma once
// The platform's named styles as this shell draws them: the accent, secondary, green, orange and
// red colours, and the text styles (headline, title, callout, caption, caption 2) of the small
// control size.
#include <QColor>
#include <QFont>
#include <QPalette>

namespace corvanel::style {

QColor accent();
QColor secondary();
QColor green();
QColor orange();
QColor red();

QFont headline();
QFont titleSemibold();
QFont callout();
QFont caption();
QFont caption2();
// System font 10 points, monospaced design (the activity lines).
QFont monospacedSmall();
// `size` points, semibold, digits of fixed width (the panel's summary values).
QFont fixedDigits(int size, bool semibold);

// A dark palette for the shell's windows: menu-bar utilities sit on a dark material.
QPalette darkPalette();

}  // namespace corvanel::style
