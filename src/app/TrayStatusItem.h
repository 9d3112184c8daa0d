#pragma once
// The status item as a system-tray icon (a StatusNotifierItem on current Linux desktops): the
// square icon of TrayIcon.h, the full title in the tooltip.
#include <QSystemTrayIcon>

#include "app/StatusItem.h"

namespace corvanel {

class TrayStatusItem final : public StatusItem {
  public:
    TrayStatusItem();

    // The square icon in the desktop palette's colours, at two pixels per point.
    QImage labelImage(const QString& title,
                      const std::optional<std::vector<float>>& levels) const override;
    void setLabelImage(const QImage& image) override;
    void setInserted(bool inserted) override;
    QRect geometry() const override;

    void setToolTip(const QString& text);
    QIcon icon() const { return tray_.icon(); }

  private:
    QSystemTrayIcon tray_;
};

// The template image in `color` (only its alpha is kept).
QImage tintedTemplate(const QImage& templateImage, const QColor& color);

}  // namespace corvanel
