#include "meters/styles/YamahaClassicComboView.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <cmath>

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/LayerEffects.h"
#include "meters/kit/SystemFonts.h"
#include "meters/kit/TextPlacement.h"
#include "meters/styles/YamahaVUMeterView.h"

namespace corvanel::meters {

namespace {

constexpr double meterSpacing = 10.0;

void paintPlate(QPainter& painter, const QSizeF& size) {
    const QRectF box(QPointF(), size);
    drawWithShadow(painter, box, {grey(0.0, 0.55), 4, {0, 2}}, [&](QPainter& layer) {
        QLinearGradient fill(box.topLeft(), box.bottomLeft());
        fill.setColorAt(0.0, grey(0.13));
        fill.setColorAt(0.5, grey(0.055));
        fill.setColorAt(1.0, grey(0.09));
        layer.fillPath(continuousRoundedRect(box, 8), fill);
    });
    strokeInside(painter, box, 8, grey(0.32), 1);
    const YamahaClassicComboView::Layout layout = YamahaClassicComboView::layoutFor(size);
    painter.fillRect(layout.rule, grey(0.28));
}

TextStyle legendStyle(int size, FontWeight weight, double letterSpacing) {
    return {systemFont(size, weight, FontDesign::monospaced, letterSpacing), grey(0.72)};
}

YamahaClassicComboView::LineMetrics metricsOf(const TextStyle& style) {
    const QFontMetricsF metrics(style.font);
    return {metrics.ascent(), metrics.descent(), metrics.capHeight()};
}

void paintLegend(QPainter& painter) {
    const TextStyle first = legendStyle(7, FontWeight::medium, 1.2);
    const TextStyle second = legendStyle(6, FontWeight::regular, 0.7);
    const auto [firstBaseline, secondBaseline] =
        YamahaClassicComboView::legendBaselines(metricsOf(first), metricsOf(second));
    const auto drawLine = [&](const QString& text, const TextStyle& style, double baseline) {
        drawText(painter, text, style, {20, baseline - metricsOf(style).ascent},
                 HorizontalAnchor::left, VerticalAnchor::top);
    };
    drawLine(QStringLiteral("NATURAL SOUND"), first, firstBaseline);
    drawLine(QStringLiteral("STEREO LEVEL MONITOR"), second, secondBaseline);
}

}  // namespace

YamahaClassicComboView::YamahaClassicComboView()
    : meters_(std::make_unique<YamahaVUMeterView>(QStringLiteral("LEFT")),
              std::make_unique<YamahaVUMeterView>(QStringLiteral("RIGHT")), meterSpacing) {}

YamahaClassicComboView::Layout YamahaClassicComboView::layoutFor(const QSizeF& size) {
    // The fixed paddings and the rule take 71 points; the meters and the display share the rest.
    const double flexible = std::max(0.0, size.height() - (22 + 16) - 1 - (16 + 16));
    const double meterHeight = std::floor(flexible / 2);
    const double spectrumHeight = flexible - meterHeight;
    const QRectF meters(18, 22, size.width() - 36, meterHeight);
    const QRectF rule(16, meters.bottom() + 16, size.width() - 32, 1);
    const QRectF spectrum(18, rule.bottom() + 16, size.width() - 36, spectrumHeight);
    return {meters, rule, spectrum};
}

std::array<double, 2> YamahaClassicComboView::legendBaselines(const LineMetrics& first,
                                                              const LineMetrics& second) {
    // Both lines are capitals only, so each takes its cap height and its descent: the room a
    // font's ascent leaves above the capitals (for accents) would push the second line onto the
    // meters with fonts of a tall ascent. The first line hangs 7 points below the plate's top,
    // the second 1 point below the first.
    const double firstBaseline = 7 + first.capHeight;
    return {firstBaseline, firstBaseline + first.descent + 1 + second.capHeight};
}

void YamahaClassicComboView::setValues(const MeterValues& values) {
    meters_.setValues(values);
    spectrum_.setLevels(values.levels);
}

bool YamahaClassicComboView::step(double dt) {
    return meters_.step(dt);
}

void YamahaClassicComboView::settle() {
    meters_.settle();
}

void YamahaClassicComboView::paint(QPainter& painter, const QSizeF& size) {
    plate_.draw(painter, size, paintPlate);
    const Layout layout = layoutFor(size);
    painter.save();
    painter.translate(layout.meters.topLeft());
    meters_.paint(painter, layout.meters.size());
    painter.restore();
    painter.save();
    painter.translate(layout.spectrum.topLeft());
    spectrum_.paint(painter, layout.spectrum.size());
    painter.restore();
    legend_.draw(painter, size, [](QPainter& p, const QSizeF&) { paintLegend(p); });
}

}  // namespace corvanel::meters
