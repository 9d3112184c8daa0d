#pragma once
// The status item as a system-tray icon (QSystemTrayIcon: a StatusNotifierItem or an XEmbed
// tray icon): the square icon of TrayIcon.h in the desktop's colours, the full title in the
// tooltip.
#include <QSystemTrayIcon>
#include <memory>

#include "app/TrayIconItem.h"

namespace corvanel {

class TrayStatusItem final : public TrayIconItem {
  public:
    explicit TrayStatusItem(std::shared_ptr<DesktopPalette> desktop);

    void setLabelImage(const QImage& image) override;
    void setTitle(const QString& title) override;
    void setInserted(bool inserted) override;
    QRect geometry() const override;

    QIcon icon() const { return tray_.icon(); }
    QString toolTip() const { return tray_.toolTip(); }

  private:
    QSystemTrayIcon tray_;
};

// The template image in `color` (only its alpha is kept).
QImage tintedTemplate(const QImage& templateImage, const QColor& color);

}  // namespace corvanel
