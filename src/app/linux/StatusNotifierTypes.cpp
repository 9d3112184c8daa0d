#include "app/linux/StatusNotifierTypes.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace corvanel {

StatusNotifierPixmap statusNotifierPixmap(const QImage& image) {
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    StatusNotifierPixmap pixmap;
    pixmap.width = argb.width();
    pixmap.height = argb.height();
    pixmap.argb.resize(qsizetype(argb.width()) * argb.height() * 4);
    auto* out = reinterpret_cast<uchar*>(pixmap.argb.data());
    for (int y = 0; y < argb.height(); ++y) {
        qToBigEndian<quint32>(argb.constScanLine(y), argb.width(), out);
        out += qsizetype(argb.width()) * 4;
    }
    return pixmap;
}

void registerStatusNotifierTypes() {
    qDBusRegisterMetaType<StatusNotifierPixmap>();
    qDBusRegisterMetaType<StatusNotifierPixmaps>();
    qDBusRegisterMetaType<StatusNotifierToolTip>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.argb;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.argb;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icons << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.icons >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

}  // namespace corvanel
