#include "app/TrayIconItem.h"

#include "app/TrayIcon.h"

namespace corvanel {

TrayIconItem::TrayIconItem(std::shared_ptr<DesktopPalette> desktop) : desktop_(std::move(desktop)) {
    desktopChanged_ = desktop_->changed.connect([this] {
        if (onAppearanceChanged) onAppearanceChanged();
    });
}

QImage TrayIconItem::labelImage(const QString& title,
                                const std::optional<std::vector<float>>& levels) const {
    return trayIconImage(title, levels, desktop_->trayColours(), 2.0);
}

}  // namespace corvanel
