#include "meters/styles/SpectrumBarsView.h"

#include <algorithm>
#include <cmath>

#include "meters/kit/ContinuousRect.h"
#include "meters/kit/LevelMath.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"
#include "meters/styles/WaveformSymbol.h"

namespace corvanel::meters {

namespace {
constexpr double rowSpacing = 5.0;
constexpr double cornerRadius = 0.75;
}  // namespace

SpectrumBarsView::SpectrumBarsView(std::vector<float> levels)
    : from_(levels), to_(std::move(levels)) {}

void SpectrumBarsView::setLevels(std::vector<float> levels) {
    std::vector<float> shown = to_;
    if (progress_ < 1.0 && from_.size() == to_.size())
        for (std::size_t i = 0; i < shown.size(); ++i)
            shown[i] = from_[i] + (to_[i] - from_[i]) * static_cast<float>(progress_);
    from_ = shown.size() == levels.size() ? std::move(shown) : levels;
    to_ = std::move(levels);
    progress_ = 0.0;
}

bool SpectrumBarsView::step(double dt) {
    progress_ = std::min(1.0, progress_ + dt / transitionSeconds);
    return progress_ < 1.0;
}

void SpectrumBarsView::settle() {
    progress_ = 1.0;
}

double SpectrumBarsView::width() const {
    const auto n = static_cast<double>(to_.size());
    return n == 0 ? 0.0 : n * barWidth + (n - 1) * barSpacing;
}

void SpectrumBarsView::paint(QPainter& painter, QPointF origin, const QColor& colour) const {
    const double bottom = origin.y() + frameHeight;
    for (std::size_t i = 0; i < to_.size(); ++i) {
        double level = to_[i];
        if (progress_ < 1.0 && from_.size() == to_.size())
            level = from_[i] + (to_[i] - from_[i]) * progress_;
        const double h = std::max(clampedLevel(level) * fullHeight, stubHeight);
        const double x = origin.x() + static_cast<double>(i) * (barWidth + barSpacing);
        painter.fillPath(continuousRoundedRect(QRectF(x, bottom - h, barWidth, h), cornerRadius),
                         colour);
    }
}

QImage SpectrumBarsView::menuBarImage(const QString& title,
                                      const std::optional<std::vector<float>>& levels) {
    const TextStyle text{systemFont(13, FontWeight::medium), Qt::black, true};
    // No levels, or too few to make a bar, show the waveform symbol instead.
    const SpectrumBarsView bars(levels ? pairwiseMaxima(*levels) : std::vector<float>{});
    const bool showsBars = bars.width() > 0.0;

    const double titleWidth = title.isEmpty() ? 0.0 : textWidth(title, text);
    const double symbolWidth = showsBars ? bars.width() : WaveformSymbol::width;
    const double symbolHeight = showsBars ? frameHeight : WaveformSymbol::height;
    const double spacing = titleWidth > 0.0 && symbolWidth > 0.0 ? rowSpacing : 0.0;
    const double width = titleWidth + spacing + symbolWidth;
    const double height = std::max(title.isEmpty() ? 0.0 : textHeight(text), symbolHeight);
    const QSize pixels(static_cast<int>(std::ceil(width * labelScale)),
                       static_cast<int>(std::ceil(height * labelScale)));
    if (pixels.isEmpty()) return {};

    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return {};
    image.setDevicePixelRatio(labelScale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    const double middle = height / 2.0;
    if (titleWidth > 0.0)
        drawText(painter, title, text, {0, middle}, HorizontalAnchor::left, VerticalAnchor::centre);
    const double x = titleWidth + spacing;
    if (showsBars)
        bars.paint(painter, {x, middle - frameHeight / 2.0}, Qt::black);
    else
        WaveformSymbol::paint(painter, {x, middle - WaveformSymbol::height / 2.0}, Qt::black);
    return image;
}

}  // namespace corvanel::meters
