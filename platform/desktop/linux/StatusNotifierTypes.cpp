#include "platform/desktop/linux/StatusNotifierTypes.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QImage>
#include <QtEndian>

namespace orvello {

IconPixmap iconPixmapFrom(const QImage& image) {
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    const qsizetype rowBytes = qsizetype(4) * argb.width();
    IconPixmap pixmap{argb.width(), argb.height(), QByteArray(rowBytes * argb.height(), Qt::Uninitialized)};
    for (int row = 0; row < argb.height(); ++row)
        qToBigEndian<quint32>(argb.constScanLine(row), argb.width(), pixmap.pixels.data() + row * rowBytes);
    return pixmap;
}

QDBusArgument& operator<<(QDBusArgument& argument, const IconPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.pixels;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.pixels;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const ToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, ToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

void registerStatusNotifierTypes() {
    qDBusRegisterMetaType<IconPixmap>();
    qDBusRegisterMetaType<QList<IconPixmap>>();
    qDBusRegisterMetaType<ToolTip>();
}

} // namespace orvello
