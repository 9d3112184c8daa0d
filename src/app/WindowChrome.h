#pragma once
// The platform window behaviour the panel and the visualizer need, so each platform can give it
// a native body: a hidden title bar (content runs under the title-bar strip), a floating or
// normal window level, and the close / minimise / zoom buttons faded in and out. On macOS these
// are the window's own standard buttons; on Linux the window is frameless and draws its own.
#include <QWidget>
#include <chrono>
#include <functional>
#include <memory>

namespace corvanel {

class WindowChrome {
  public:
    // How long the window buttons take to fade in or out.
    static constexpr std::chrono::milliseconds buttonFade{250};

    virtual ~WindowChrome() = default;

    // Floating level (above ordinary windows) or normal level. Implementations keep the hidden
    // title bar and the buttons' opacity across the native window that Qt recreates when window
    // flags change.
    virtual void setFloating(bool floating) = 0;
    virtual bool isFloating() const = 0;

    // Fades the three window buttons to fully visible or fully transparent over `buttonFade`.
    // Only their opacity changes; they are neither removed nor moved. A missing button is
    // skipped.
    virtual void setWindowButtonsVisible(bool visible) = 0;
    // Where the last fade is heading (true: visible).
    virtual bool windowButtonsVisible() const = 0;
};

// Gives `window` (a top-level widget) its chrome, applied at once: hidden title bar, normal
// level, buttons visible. The chrome lives no longer than the window.
using WindowChromeFactory = std::function<std::unique_ptr<WindowChrome>(QWidget& window)>;

}  // namespace corvanel
