#include "meters/styles/LEDRackComboView.h"

#include "meters/kit/StackLayout.h"
#include "meters/styles/LEDBarMeterView.h"

namespace corvanel::meters {

namespace {
constexpr double rowSpacing = 12.0;
constexpr double meterSpacing = 14.0;
}  // namespace

LEDRackComboView::LEDRackComboView()
    : bars_(std::make_unique<LEDBarMeterView>(QStringLiteral("L")),
            std::make_unique<LEDBarMeterView>(QStringLiteral("R")), meterSpacing) {}

void LEDRackComboView::setValues(const MeterValues& values) {
    bars_.setValues(values);
    spectrum_.setValues(values);
}

void LEDRackComboView::paint(QPainter& painter, const QSizeF& size) {
    const StackRows rows = equalRows(size.height(), rowSpacing);
    bars_.paint(painter, {size.width(), rows.firstHeight});
    painter.save();
    painter.translate(0, rows.secondTop);
    spectrum_.paint(painter, {size.width(), rows.secondHeight});
    painter.restore();
}

}  // namespace corvanel::meters
