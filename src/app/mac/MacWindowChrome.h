#pragma once
// The shell's window chrome on a native macOS window: hidden transparent title bar over
// full-size content, the window's own buttons faded through their alpha, the window level, and
// a translucent material behind the content. Qt replaces the native window when window flags
// change; everything is applied again to the new one.
#include <QObject>

#include "app/WindowChrome.h"

namespace corvanel {

class MacWindowChrome final : public QObject, public WindowChrome {
  public:
    explicit MacWindowChrome(QWidget& window);

    void setFloating(bool floating) override;
    bool isFloating() const override;
    void setWindowButtonsVisible(bool visible) override;
    bool windowButtonsVisible() const override;

    static WindowChromeFactory factory();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void* nativeView() const;
    // Everything at once, without animation, on the current native window.
    void applyAll();

    QWidget& window_;
    bool floating_ = false;
    bool buttonsVisible_ = true;
};

}  // namespace corvanel
