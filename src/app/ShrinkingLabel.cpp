#include "app/ShrinkingLabel.h"

#include <QPainter>

namespace corvanel {

ShrinkingLabel::ShrinkingLabel(const QFont& font, qreal minimumScale, QWidget* parent)
    : QWidget(parent), minimumScale_(minimumScale) {
    setFont(font);
    color_ = palette().color(QPalette::WindowText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ShrinkingLabel::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    setToolTip(text);
    update();
}

void ShrinkingLabel::setColor(const QColor& color) {
    color_ = color;
    update();
}

void ShrinkingLabel::setAlignment(Qt::Alignment alignment) {
    alignment_ = alignment;
    update();
}

qreal ShrinkingLabel::currentScale() const {
    const qreal natural = QFontMetricsF(font()).horizontalAdvance(text_);
    if (natural <= width() || natural <= 0) return 1.0;
    return std::max(minimumScale_, width() / natural);
}

QSize ShrinkingLabel::sizeHint() const {
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text_), metrics.height()};
}

QSize ShrinkingLabel::minimumSizeHint() const {
    return {0, QFontMetrics(font()).height()};
}

QFont ShrinkingLabel::scaledFont() const {
    QFont scaled = font();
    const qreal scale = currentScale();
    if (font().pixelSize() > 0)
        scaled.setPixelSize(std::max(1, int(font().pixelSize() * scale)));
    else
        scaled.setPointSizeF(font().pointSizeF() * scale);
    return scaled;
}

QString ShrinkingLabel::shownText() const {
    return QFontMetrics(scaledFont()).elidedText(text_, Qt::ElideRight, std::max(0, width()));
}

void ShrinkingLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(scaledFont());
    painter.setPen(color_);
    painter.drawText(rect(), alignment_ | Qt::AlignVCenter, shownText());
}

}  // namespace corvanel
