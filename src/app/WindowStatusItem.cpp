#include "app/WindowStatusItem.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

#include "app/TrayStatusItem.h"

namespace corvanel {
namespace {

constexpr int padding = 8;

}  // namespace

WindowStatusItem::LabelWindow::LabelWindow(WindowStatusItem& item) : item_(item) {
    setObjectName("statusItem");
    setWindowTitle("Corvanel");
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    setCursor(Qt::PointingHandCursor);
    setToolTip("Click to open Corvanel");
    setFixedSize(100, 32);
}

void WindowStatusItem::LabelWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0x1d, 0x1d, 0x22));
    if (label.isNull()) return;
    const QSizeF size = label.deviceIndependentSize();
    const QPointF origin((width() - size.width()) / 2, (height() - size.height()) / 2);
    painter.drawImage(origin, label);
}

void WindowStatusItem::LabelWindow::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()) &&
        item_.onActivated)
        item_.onActivated();
}

void WindowStatusItem::LabelWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    if (item_.onQuitRequested) item_.onQuitRequested();
}

WindowStatusItem::WindowStatusItem() : window_(*this) {}

void WindowStatusItem::setLabelImage(const QImage& templateImage) {
    QImage tinted = tintedTemplate(templateImage, QColor(0xf2, 0xf2, 0xf2));
    tinted.setDevicePixelRatio(templateImage.devicePixelRatio());
    window_.label = std::move(tinted);
    const QSize wanted =
        window_.label.deviceIndependentSize().toSize() + QSize(2 * padding, 2 * padding);
    // Grows with a longer title but does not shrink and jitter with every digit.
    if (wanted.width() > window_.width() || wanted.height() > window_.height())
        window_.setFixedSize(wanted.expandedTo(window_.size()));
    window_.update();
}

void WindowStatusItem::setInserted(bool inserted) {
    if (inserted && !placed_) {
        // Where a status area would be: the top right of the screen.
        placed_ = true;
        if (const QScreen* screen = QGuiApplication::primaryScreen()) {
            const QRect area = screen->availableGeometry();
            window_.move(area.right() - 260, area.top() + 8);
        }
    }
    window_.setVisible(inserted);
}

QRect WindowStatusItem::geometry() const {
    if (!window_.isVisible()) return {};
    return window_.frameGeometry();
}

}  // namespace corvanel
