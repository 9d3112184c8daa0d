#pragma once
// The "vintageconsole" panel style: two retro VU meters (left and right channel) above the amber
// bar analyzer, sharing the height equally.
#include "meters/styles/ComboView.h"

namespace corvanel::meters {

class VintageComboView final : public ComboView {
  public:
    VintageComboView();
};

}  // namespace corvanel::meters
