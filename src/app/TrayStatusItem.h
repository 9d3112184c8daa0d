#pragma once
// The status item as a system-tray icon (a StatusNotifierItem on current Linux desktops).
#include <QSystemTrayIcon>

#include "app/StatusItem.h"

namespace corvanel {

class TrayStatusItem final : public StatusItem {
  public:
    TrayStatusItem();

    void setLabelImage(const QImage& templateImage) override;
    void setInserted(bool inserted) override;
    QRect geometry() const override;

    void setToolTip(const QString& text);

  private:
    QSystemTrayIcon tray_;
};

// The template image in the colour a status area draws it in: light, for the dark panels most
// desktops use.
QImage tintedTemplate(const QImage& templateImage, const QColor& color);

}  // namespace corvanel
