#include "meters/YamahaClassicComboView.h"

#include <QLinearGradient>
#include <cmath>

#include "meters/Colors.h"
#include "meters/ContinuousRect.h"
#include "meters/LayerEffects.h"
#include "meters/SystemFonts.h"
#include "meters/TextPlacement.h"
#include "meters/YamahaVUMeterView.h"

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

void paintLegend(QPainter& painter) {
    const TextStyle first{systemFont(7, FontWeight::medium, FontDesign::monospaced, 1.2),
                          grey(0.72)};
    const TextStyle second{systemFont(6, FontWeight::regular, FontDesign::monospaced, 0.7),
                           grey(0.72)};
    drawText(painter, QStringLiteral("NATURAL SOUND"), first, {20, 7}, HorizontalAnchor::left,
             VerticalAnchor::top);
    drawText(painter, QStringLiteral("STEREO LEVEL MONITOR"), second,
             {20, 7 + textHeight(first) + 1}, HorizontalAnchor::left, VerticalAnchor::top);
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
