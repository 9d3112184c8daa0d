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

TrayStatusItem::TrayStatusItem(std::shared_ptr<DesktopPalette> desktop)
    : TrayIconItem(std::move(desktop)) {
    QObject::connect(
        &tray_, &QSystemTrayIcon::activated, [this](QSystemTrayIcon::ActivationReason reason) {
            if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::Context) {
                if (onActivated) onActivated();
            }
        });
}

void TrayStatusItem::setLabelImage(const QImage& image) {
    QIcon icon;
    icon.addPixmap(QPixmap::fromImage(image));
    icon.addPixmap(QPixmap::fromImage(trayIconAtOnePixelPerPoint(image)));
    tray_.setIcon(icon);
}

void TrayStatusItem::setTitle(const QString& title) {
    tray_.setToolTip(title);
}

void TrayStatusItem::setInserted(bool inserted) {
    tray_.setVisible(inserted);
}

QRect TrayStatusItem::geometry() const {
    return tray_.geometry();
}

}  // namespace corvanel
