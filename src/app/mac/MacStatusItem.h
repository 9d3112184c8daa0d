#pragma once
// The shell's status item as a native NSStatusItem (macOS).
#include "app/StatusItem.h"
#include "platform/mac/NativeStatusItem.h"

namespace corvanel {

class MacStatusItem final : public StatusItem {
  public:
    MacStatusItem();

    void setLabelImage(const QImage& templateImage) override;
    void setInserted(bool inserted) override;
    QRect geometry() const override;

  private:
    NativeStatusItem native_;
};

}  // namespace corvanel
