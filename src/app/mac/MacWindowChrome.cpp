#include "app/mac/MacWindowChrome.h"

#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <memory>

#include "platform/mac/NativeWindowChrome.h"

namespace corvanel {

MacWindowChrome::MacWindowChrome(QWidget& window) : window_(window) {
    // Unpainted background lets the native material show through.
    window_.setAttribute(Qt::WA_TranslucentBackground);
    window_.installEventFilter(this);
    applyAll();
}

WindowChromeFactory MacWindowChrome::factory() {
    return [](QWidget& window) -> std::unique_ptr<WindowChrome> {
        return std::make_unique<MacWindowChrome>(window);
    };
}

void* MacWindowChrome::nativeView() const {
    // The NSView of a top-level widget; asking for it creates the native window if needed.
    return reinterpret_cast<void*>(window_.winId());
}

void MacWindowChrome::applyAll() {
    void* view = nativeView();
    nativeWindow::hideTitleBar(view);
    nativeWindow::setFloating(view, floating_);
    nativeWindow::fadeStandardButtons(view, buttonsVisible_, 0);
    nativeWindow::installTranslucentMaterial(view);
}

void MacWindowChrome::setFloating(bool floating) {
    floating_ = floating;
    nativeWindow::setFloating(nativeView(), floating_);
}

bool MacWindowChrome::isFloating() const {
    return floating_;
}

void MacWindowChrome::setWindowButtonsVisible(bool visible) {
    buttonsVisible_ = visible;
    const double seconds = std::chrono::duration<double>(buttonFade).count();
    nativeWindow::fadeStandardButtons(nativeView(), buttonsVisible_, seconds);
}

bool MacWindowChrome::windowButtonsVisible() const {
    return buttonsVisible_;
}

bool MacWindowChrome::eventFilter(QObject* watched, QEvent* event) {
    // A new native window (flags changed) or a show, after which Qt sets its own style and
    // level: apply ours again once Qt is done.
    if (watched == &window_ &&
        (event->type() == QEvent::WinIdChange || event->type() == QEvent::Show)) {
        QTimer::singleShot(0, this, [this] { applyAll(); });
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace corvanel
