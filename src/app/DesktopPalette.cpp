#include "app/DesktopPalette.h"

#include <QApplication>
#include <QEvent>

namespace corvanel {

DesktopPalette::DesktopPalette(const QPalette& shellPalette)
    : shell_(shellPalette), desktop_(QGuiApplication::palette()) {
    QApplication::setPalette(shell_);
    qApp->installEventFilter(this);
}

DesktopPalette::~DesktopPalette() {
    if (qApp) qApp->removeEventFilter(this);
}

TrayIconColours DesktopPalette::trayColours() const {
    return {desktop_.color(QPalette::Active, QPalette::WindowText),
            desktop_.color(QPalette::Active, QPalette::Window)};
}

bool DesktopPalette::isShellPalette(const QPalette& palette) const {
    // The roles the tray reads; Qt fills the roles the shell leaves open from the theme, so the
    // palettes as a whole differ.
    for (const QPalette::ColorRole role : {QPalette::Window, QPalette::WindowText}) {
        if (palette.color(QPalette::Active, role) != shell_.color(QPalette::Active, role))
            return false;
    }
    return true;
}

bool DesktopPalette::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) {
        const QPalette now = QGuiApplication::palette();
        if (!isShellPalette(now)) {
            const TrayIconColours before = trayColours();
            desktop_ = now;
            if (trayColours() != before) changed.emit();
            // Not from inside the palette's own change: every widget is still being told.
            QMetaObject::invokeMethod(
                this, [this] { QApplication::setPalette(shell_); }, Qt::QueuedConnection);
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace corvanel
