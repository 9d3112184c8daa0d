#include "app/TrayStatusItem.h"

#include <QPainter>

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

void TrayStatusItem::setLabelImage(const QImage& templateImage) {
    QImage tinted = tintedTemplate(templateImage, QColor(0xf2, 0xf2, 0xf2));
    tinted.setDevicePixelRatio(templateImage.devicePixelRatio());
    tray_.setIcon(QIcon(QPixmap::fromImage(tinted)));
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
