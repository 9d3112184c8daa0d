#include "app/TrayStatusItem.h"

#include <QPainter>

#include "app/TrayIcon.h"

namespace corvanel {

QImage tintedTemplate(const QImage& templateImage, const QColor& color) {
    QImage tinted = templateImage.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&tinted);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(tinted.rect(), color);
    return tinted;
}

TrayStatusItem::TrayStatusItem() {
    QObject::connect(
        &tray_, &QSystemTrayIcon::activated, [this](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::Context) {
                if (onActivated) onActivated();
            }
        });
}

QImage TrayStatusItem::labelImage(const QString& title,
                                  const std::optional<std::vector<float>>& levels) const {
    return trayIconImage(title, levels, desktopTrayColours(), 2.0);
}

void TrayStatusItem::setLabelImage(const QImage& image) {
    QIcon icon;
    icon.addPixmap(QPixmap::fromImage(image));
    // The one-pixel-per-point size, averaged down from the sharper drawing.
    QImage single = image.scaled(image.size() / image.devicePixelRatio(), Qt::IgnoreAspectRatio,
                                 Qt::SmoothTransformation);
    single.setDevicePixelRatio(1.0);
    icon.addPixmap(QPixmap::fromImage(single));
    tray_.setIcon(icon);
}

void TrayStatusItem::setInserted(bool inserted) {
    tray_.setVisible(inserted);
}

QRect TrayStatusItem::geometry() const {
    return tray_.geometry();
}

void TrayStatusItem::setToolTip(const QString& text) {
    tray_.setToolTip(text);
}

}  // namespace corvanel
