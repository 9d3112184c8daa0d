#include "app/StatusDot.h"

#include <QPainter>

namespace corvanel {

StatusDot::StatusDot(int diameter, QWidget* parent) : QWidget(parent) {
    setFixedSize(diameter, diameter);
}

void StatusDot::setColor(const QColor& color) {
    if (color == color_) return;
    color_ = color;
    update();
}

void StatusDot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color_);
    painter.drawEllipse(QRectF(rect()));
}

}  // namespace corvanel
