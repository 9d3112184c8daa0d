#pragma once
// The one place that knows which renderer draws which panel style. A raw value that names no
// style gets the spectrum analyzer.
#include <memory>
#include <string_view>

#include "app/PanelMeterStyle.h"
#include "meters/kit/MeterRenderer.h"

namespace corvanel {

std::unique_ptr<meters::MeterRenderer> makeMeterRenderer(PanelMeterStyle style);
std::unique_ptr<meters::MeterRenderer> makeMeterRenderer(std::string_view rawValue);

}  // namespace corvanel
