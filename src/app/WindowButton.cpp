#include "app/WindowButton.h"

#include <QPainter>

namespace corvanel {
namespace {

QColor fillOf(WindowButton::Kind kind) {
    switch (kind) {
        case WindowButton::Kind::close:
            return QColor(0xff, 0x5f, 0x57);
        case WindowButton::Kind::minimize:
            return QColor(0xfe, 0xbc, 0x2e);
        case WindowButton::Kind::zoom:
            return QColor(0x28, 0xc8, 0x40);
    }
    return {};
}

const char* nameOf(WindowButton::Kind kind) {
    switch (kind) {
        case WindowButton::Kind::close:
            return "closeButton";
        case WindowButton::Kind::minimize:
            return "minimizeButton";
        case WindowButton::Kind::zoom:
            return "zoomButton";
    }
    return "";
}

}  // namespace

WindowButton::WindowButton(Kind kind, QWidget* parent) : QAbstractButton(parent), kind_(kind) {
    setObjectName(nameOf(kind));
    setFixedSize(12, 12);
    setFocusPolicy(Qt::NoFocus);
}

void WindowButton::setGlyphShown(bool shown) {
    glyphShown_ = shown;
    update();
}

void WindowButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor fill = fillOf(kind_);
    const QRectF circle = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(fill.darker(125), 0.75));
    painter.setBrush(fill);
    painter.drawEllipse(circle);
    if (!glyphShown_) return;

    painter.setPen(QPen(QColor(0, 0, 0, 150), 1.2, Qt::SolidLine, Qt::RoundCap));
    const QPointF c = circle.center();
    switch (kind_) {
        case Kind::close:
            painter.drawLine(c + QPointF(-2.5, -2.5), c + QPointF(2.5, 2.5));
            painter.drawLine(c + QPointF(-2.5, 2.5), c + QPointF(2.5, -2.5));
            break;
        case Kind::minimize:
            painter.drawLine(c + QPointF(-3, 0), c + QPointF(3, 0));
            break;
        case Kind::zoom:
            painter.drawLine(c + QPointF(-3, 0), c + QPointF(3, 0));
            painter.drawLine(c + QPointF(0, -3), c + QPointF(0, 3));
            break;
    }
}

}  // namespace corvanel
