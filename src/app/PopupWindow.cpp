#include "app/PopupWindow.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

namespace corvanel {
namespace {

constexpr int gapBelowItem = 4;

bool isKnownPlace(const QRect& anchor) {
    return !anchor.isEmpty() && anchor.topLeft() != QPoint(0, 0);
}

}  // namespace

PopupWindow::PopupWindow() {
    setObjectName("popup");
    setWindowFlags(Qt::Popup | Qt::FramelessWindowHint);
    auto layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void PopupWindow::setContent(QWidget* content) {
    layout()->addWidget(content);
}

void PopupWindow::toggle(const QRect& anchor) {
    if (isVisible()) {
        hide();
        return;
    }
    if (sinceClosed_.isValid() && sinceClosed_.elapsed() < reopenGuardMilliseconds) return;
    // The user just clicked the item: where the platform does not say where it is, the pointer
    // is on it.
    openBelow(isKnownPlace(anchor) ? anchor : QRect(QCursor::pos(), QSize(1, 1)));
}

void PopupWindow::openBelow(const QRect& anchor) {
    const QScreen* screen =
        isKnownPlace(anchor) ? QGuiApplication::screenAt(anchor.center()) : nullptr;
    if (!screen) screen = QGuiApplication::primaryScreen();
    adjustSize();
    const QRect area = screen ? screen->availableGeometry() : QRect(QPoint(), sizeHint());
    const QRect target =
        isKnownPlace(anchor) ? anchor : QRect(area.right(), area.top() - gapBelowItem, 1, 1);
    move(placement(target, size(), area));
    show();
    raise();
    activateWindow();
}

QPoint PopupWindow::placement(const QRect& anchor, const QSize& popup, const QRect& screen) {
    int x = anchor.x() + (anchor.width() - popup.width()) / 2;
    int y = anchor.bottom() + 1 + gapBelowItem;
    if (y + popup.height() > screen.bottom() + 1) y = anchor.top() - gapBelowItem - popup.height();
    x = std::clamp(x, screen.left(), std::max(screen.left(), screen.right() + 1 - popup.width()));
    y = std::clamp(y, screen.top(), std::max(screen.top(), screen.bottom() + 1 - popup.height()));
    return {x, y};
}

void PopupWindow::hideEvent(QHideEvent* event) {
    sinceClosed_.start();
    QWidget::hideEvent(event);
}

void PopupWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace corvanel
