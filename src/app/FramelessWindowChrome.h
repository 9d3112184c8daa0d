#pragma once
// Window chrome for desktops where Qt cannot hide a native title bar but keep its buttons: the
// window is frameless and draws its own close, minimise and zoom buttons at the top left, fades
// them in and out, moves the window when the top strip is dragged and resizes it from the
// bottom-right corner.
#include <QPointer>
#include <QPropertyAnimation>

#include "app/WindowChrome.h"

class QGraphicsOpacityEffect;
class QSizeGrip;

namespace corvanel {

class FramelessWindowChrome final : public QObject, public WindowChrome {
    Q_OBJECT

  public:
    // Height of the strip at the top that stands for the hidden title bar.
    static constexpr int titleStripHeight = 28;

    explicit FramelessWindowChrome(QWidget& window);
    ~FramelessWindowChrome() override;

    void setFloating(bool floating) override;
    bool isFloating() const override;
    void setWindowButtonsVisible(bool visible) override;
    bool windowButtonsVisible() const override;

    // The three buttons' current opacity, 0 to 1 (mid-fade values while animating).
    qreal windowButtonsOpacity() const;

    static WindowChromeFactory factory();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void applyFlags();
    void keepOnTopOfContent();

    QWidget& window_;
    bool floating_ = false;
    bool buttonsVisible_ = true;
    QPointer<QWidget> buttons_;
    QPointer<QSizeGrip> grip_;
    QPointer<QGraphicsOpacityEffect> opacity_;
    QPointer<QPropertyAnimation> fade_;
};

}  // namespace corvanel
