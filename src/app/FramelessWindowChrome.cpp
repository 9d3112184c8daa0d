#include "app/FramelessWindowChrome.h"

#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QSizeGrip>
#include <QTimer>
#include <QWindow>

#include "app/WindowButton.h"

namespace corvanel {

FramelessWindowChrome::FramelessWindowChrome(QWidget& window) : QObject(&window), window_(window) {
    auto buttons = new QWidget(&window);
    buttons->setObjectName("windowButtons");
    auto row = new QHBoxLayout(buttons);
    row->setContentsMargins(12, 8, 0, 0);
    row->setSpacing(8);
    auto close = new WindowButton(WindowButton::Kind::close, buttons);
    auto minimize = new WindowButton(WindowButton::Kind::minimize, buttons);
    auto zoom = new WindowButton(WindowButton::Kind::zoom, buttons);
    row->addWidget(close);
    row->addWidget(minimize);
    row->addWidget(zoom);
    buttons->adjustSize();
    connect(close, &QAbstractButton::clicked, &window, &QWidget::close);
    connect(minimize, &QAbstractButton::clicked, &window, &QWidget::showMinimized);
    connect(zoom, &QAbstractButton::clicked, &window,
            [&window] { window.isMaximized() ? window.showNormal() : window.showMaximized(); });
    buttons_ = buttons;
    buttons->installEventFilter(this);

    opacity_ = new QGraphicsOpacityEffect(buttons);
    opacity_->setOpacity(1.0);
    buttons->setGraphicsEffect(opacity_);
    fade_ = new QPropertyAnimation(opacity_, "opacity", this);
    fade_->setDuration(int(buttonFade.count()));

    grip_ = new QSizeGrip(&window);
    grip_->resize(14, 14);

    applyFlags();
    window.installEventFilter(this);
    keepOnTopOfContent();
}

FramelessWindowChrome::~FramelessWindowChrome() = default;

WindowChromeFactory FramelessWindowChrome::factory() {
    return [](QWidget& window) -> std::unique_ptr<WindowChrome> {
        return std::make_unique<FramelessWindowChrome>(window);
    };
}

void FramelessWindowChrome::setFloating(bool floating) {
    if (floating == floating_) return;
    floating_ = floating;
    const bool wasVisible = window_.isVisible();
    applyFlags();
    // Changing flags gives the window a new native window, hidden; put it back where it was.
    if (wasVisible) window_.show();
}

bool FramelessWindowChrome::isFloating() const {
    return floating_;
}

void FramelessWindowChrome::applyFlags() {
    Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint;
    if (floating_) flags |= Qt::WindowStaysOnTopHint;
    window_.setWindowFlags(flags);
}

void FramelessWindowChrome::setWindowButtonsVisible(bool visible) {
    buttonsVisible_ = visible;
    if (!fade_) return;
    fade_->stop();
    fade_->setStartValue(opacity_->opacity());
    fade_->setEndValue(visible ? 1.0 : 0.0);
    fade_->start();
}

bool FramelessWindowChrome::windowButtonsVisible() const {
    return buttonsVisible_;
}

qreal FramelessWindowChrome::windowButtonsOpacity() const {
    return opacity_ ? opacity_->opacity() : 0.0;
}

void FramelessWindowChrome::keepOnTopOfContent() {
    if (buttons_) buttons_->raise();
    if (grip_) {
        grip_->move(window_.width() - grip_->width(), window_.height() - grip_->height());
        grip_->raise();
    }
}

bool FramelessWindowChrome::eventFilter(QObject* watched, QEvent* event) {
    if (watched == buttons_ && (event->type() == QEvent::Enter || event->type() == QEvent::Leave)) {
        // Over any of the buttons, all three show their symbols.
        for (WindowButton* button : buttons_->findChildren<WindowButton*>())
            button->setGlyphShown(event->type() == QEvent::Enter);
        return false;
    }
    if (watched != &window_) return false;
    switch (event->type()) {
        case QEvent::ChildAdded:
            // Content added after the chrome would otherwise cover the buttons.
            QTimer::singleShot(0, this, &FramelessWindowChrome::keepOnTopOfContent);
            break;
        case QEvent::Resize:
            keepOnTopOfContent();
            break;
        case QEvent::MouseButtonPress: {
            // Presses that no child takes, inside the top strip, move the window as a title
            // bar would.
            const auto* press = static_cast<QMouseEvent*>(event);
            if (press->button() == Qt::LeftButton && press->position().y() < titleStripHeight &&
                window_.windowHandle()) {
                window_.windowHandle()->startSystemMove();
                return true;
            }
            break;
        }
        default:
            break;
    }
    return false;
}

}  // namespace corvanel
