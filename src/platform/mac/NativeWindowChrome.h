#pragma once
// AppKit window behaviour for the Qt shell's glue. `view` is the NSView* of a Qt top-level
// window (QWidget::winId()), passed as void* so this header stays plain C++. Every call does
// nothing while the view has no window. Main thread only.
namespace corvanel::nativeWindow {

// Transparent, hidden title bar with the content running under it (full-size content view).
void hideTitleBar(void* view);
// Floating level (above ordinary windows) or normal level.
void setFloating(void* view, bool floating);
// Fades the close, minimise and zoom buttons to alpha 1 or 0 in one animation group lasting
// `seconds` (0: at once). A missing button is skipped.
void fadeStandardButtons(void* view, bool visible, double seconds);
// A dark translucent material behind the window's content, which shows through wherever the
// content leaves its background unpainted. Installed once per window.
void installTranslucentMaterial(void* view);

}  // namespace corvanel::nativeWindow
