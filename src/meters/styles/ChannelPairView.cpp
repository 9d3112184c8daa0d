#include "meters/styles/ChannelPairView.h"

#include <cmath>

namespace corvanel::meters {

ChannelPairView::ChannelPairView(std::unique_ptr<ChannelMeter> left,
                                 std::unique_ptr<ChannelMeter> right, double spacing)
    : left_(std::move(left)), right_(std::move(right)), spacing_(spacing) {}

void ChannelPairView::setValues(const MeterValues& values) {
    left_->setLevel(values.left);
    right_->setLevel(values.right);
}

bool ChannelPairView::step(double dt) {
    const bool leftMoving = left_->step(dt);
    const bool rightMoving = right_->step(dt);
    return leftMoving || rightMoving;
}

void ChannelPairView::settle() {
    left_->settle();
    right_->settle();
}

void ChannelPairView::paint(QPainter& painter, const QSizeF& size) {
    // Whole-point widths keep each meter's cached layers on the pixel grid.
    const double width = std::floor((size.width() - spacing_) / 2.0);
    const QSizeF meter(width, size.height());
    left_->paint(painter, meter);
    painter.save();
    painter.translate(size.width() - width, 0);
    right_->paint(painter, meter);
    painter.restore();
}

}  // namespace corvanel::meters
