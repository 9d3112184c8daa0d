#include "app/ToggleSwitch.h"

#include <QPainter>
#include <QPainterPath>

namespace corvanel {
namespace {

// The small control size of a switch.
constexpr QSizeF trackSize{26, 15};
constexpr qreal knobInset = 1.5;

}  // namespace

ToggleSwitch::ToggleSwitch(const QString& text, QWidget* parent) : QAbstractButton(parent) {
    setText(text);
    setCheckable(true);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ToggleSwitch::sizeHint() const {
    const QFontMetrics metrics(font());
    const int width = metrics.horizontalAdvance(text()) + 12 + int(trackSize.width());
    return {width, std::max(metrics.height(), int(trackSize.height()) + 2)};
}

bool ToggleSwitch::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void ToggleSwitch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colors = palette();

    const QRectF track(width() - trackSize.width() - 1, (height() - trackSize.height()) / 2,
                       trackSize.width(), trackSize.height());
    QRectF label = rect();
    label.setRight(track.left() - 8);
    painter.setPen(
        colors.color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    painter.drawText(label, Qt::AlignLeft | Qt::AlignVCenter, text());

    const qreal radius = track.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? colors.color(QPalette::Highlight) : colors.color(QPalette::Mid));
    painter.drawRoundedRect(track, radius, radius);

    const qreal knob = track.height() - 2 * knobInset;
    const qreal knobX = isChecked() ? track.right() - knobInset - knob : track.left() + knobInset;
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(knobX, track.top() + knobInset, knob, knob));
}

}  // namespace corvanel
