#pragma once
// The "futuristicrack" panel style: two neon gauges (left and right channel) above the neon
// spectrum.
#include "meters/styles/ComboView.h"

namespace corvanel::meters {

class FuturisticComboView final : public ComboView {
  public:
    FuturisticComboView();
};

}  // namespace corvanel::meters
