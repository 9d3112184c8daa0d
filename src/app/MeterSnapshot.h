#pragma once
// One still frame of a panel style: its renderer given `values` with every spring at rest,
// drawn into a transparent image of `size` points at `scale` pixels per point.
#include <QImage>
#include <QSizeF>
#include <string_view>

#include "meters/kit/MeterValues.h"

namespace corvanel {

QImage renderMeterSnapshot(std::string_view rawValue, const meters::MeterValues& values,
                           const QSizeF& size, double scale);

}  // namespace corvanel
