#pragma once
// A palette as a desktop's platform theme gives it to the application: what the tray icon reads
// its colours from.
#include <QColor>
#include <QPalette>

namespace corvanel::testing {

inline QPalette desktopTheme(const QColor& text, const QColor& window) {
    QPalette palette;
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Window, window);
    return palette;
}

}  // namespace corvanel::testing
