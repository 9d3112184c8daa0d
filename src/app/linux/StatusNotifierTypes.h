#pragma once
// The values of the StatusNotifierItem interface that D-Bus carries as structures: an icon as
// (iiay), width, height and ARGB32 pixels in network byte order, and the tooltip as
// (sa(iiay)ss), icon name, icons, title and text.
#include <QByteArray>
#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QMetaType>
#include <QString>

namespace corvanel {

struct StatusNotifierPixmap {
    qint32 width = 0;
    qint32 height = 0;
    // Row by row, four bytes a pixel: alpha, red, green, blue, not premultiplied.
    QByteArray argb;
};
using StatusNotifierPixmaps = QList<StatusNotifierPixmap>;

struct StatusNotifierToolTip {
    QString iconName;
    StatusNotifierPixmaps icons;
    QString title;
    QString text;
};

StatusNotifierPixmap statusNotifierPixmap(const QImage& image);

// Makes the types known to Qt D-Bus; before the first object that uses them goes on a bus.
void registerStatusNotifierTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip);

}  // namespace corvanel

Q_DECLARE_METATYPE(corvanel::StatusNotifierPixmap)
Q_DECLARE_METATYPE(corvanel::StatusNotifierToolTip)
