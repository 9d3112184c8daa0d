#pragma once
// The "valhalla" panel style: two lightning meters (left and right channel) above the lightning
// spectrum.
#include "meters/styles/ComboView.h"

namespace corvanel::meters {

class ValhallaComboView final : public ComboView {
  public:
    ValhallaComboView();
};

}  // namespace corvanel::meters
