#pragma once
// The "inferno" panel style: two magma meters (left and right channel) above the lava spectrum.
#include "meters/styles/ComboView.h"

namespace corvanel::meters {

class InfernoComboView final : public ComboView {
  public:
    InfernoComboView();
};

}  // namespace corvanel::meters
