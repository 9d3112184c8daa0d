#include "meters/styles/ComboView.h"

#include <algorithm>
#include <cmath>

namespace corvanel::meters {

ComboView::ComboView(std::unique_ptr<ChannelMeter> left, std::unique_ptr<ChannelMeter> right,
                     std::unique_ptr<MeterRenderer> spectrum, std::optional<double> meterAspect)
    : left_(std::move(left)),
      right_(std::move(right)),
      spectrum_(std::move(spectrum)),
      meterAspect_(meterAspect) {}

ComboView::Layout ComboView::layout(const QSizeF& size, std::optional<double> meterAspect) {
    const double halfHeight = std::max(0.0, (size.height() - rowSpacing) / 2);
    // Whole-point sizes keep each part's cached layers on the pixel grid.
    double meterWidth = std::max(0.0, std::floor((size.width() - meterSpacing) / 2));
    double rowHeight = std::floor(halfHeight);
    if (meterAspect) {
        rowHeight = std::floor(std::min(meterWidth / *meterAspect, halfHeight));
        meterWidth = std::floor(std::min(meterWidth, rowHeight * *meterAspect));
    }
    const double rowLeft = std::floor((size.width() - 2 * meterWidth - meterSpacing) / 2);
    const double spectrumTop = rowHeight + rowSpacing;
    return {QRectF(rowLeft, 0, meterWidth, rowHeight),
            QRectF(rowLeft + meterWidth + meterSpacing, 0, meterWidth, rowHeight),
            QRectF(0, spectrumTop, size.width(), std::max(0.0, size.height() - spectrumTop))};
}

void ComboView::setValues(const MeterValues& values) {
    left_->setLevel(values.left);
    right_->setLevel(values.right);
    spectrum_->setValues(values);
}

bool ComboView::step(double dt) {
    const bool leftMoving = left_->step(dt);
    const bool rightMoving = right_->step(dt);
    const bool spectrumMoving = spectrum_->step(dt);
    return leftMoving || rightMoving || spectrumMoving;
}

void ComboView::settle() {
    left_->settle();
    right_->settle();
    spectrum_->settle();
}

void ComboView::paint(QPainter& painter, const QSizeF& size) {
    const Layout parts = layout(size, meterAspect_);
    const auto paintAt = [&painter](const QRectF& area, auto& part) {
        if (area.isEmpty()) return;
        painter.save();
        painter.translate(area.topLeft());
        part.paint(painter, area.size());
        painter.restore();
    };
    paintAt(parts.left, *left_);
    paintAt(parts.right, *right_);
    paintAt(parts.spectrum, *spectrum_);
}

}  // namespace corvanel::meters
