#pragma once
// What the status items that live in a system tray share: their label is the square icon of
// TrayIcon.h in the desktop's colours, drawn again when those colours change.
#include <memory>

#include "app/DesktopPalette.h"
#include "app/StatusItem.h"

namespace corvanel {

class TrayIconItem : public StatusItem {
  public:
    explicit TrayIconItem(std::shared_ptr<DesktopPalette> desktop);

    // The square icon in the desktop's colours, at two pixels per point.
    QImage labelImage(const QString& title,
                      const std::optional<std::vector<float>>& levels) const override;

  private:
    std::shared_ptr<DesktopPalette> desktop_;
    Connection desktopChanged_;
};

}  // namespace corvanel
