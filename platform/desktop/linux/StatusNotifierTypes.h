#pragma once

#include <QByteArray>
#include <QList>
#include <QMetaType>
#include <QString>

class QDBusArgument;
class QImage;

namespace orvello {

inline const QString statusNotifierWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
inline const QString statusNotifierWatcherPath = QStringLiteral("/StatusNotifierWatcher");

/// An image on the bus, (iiay): rows of ARGB pixels, 32 bits each, in network byte order, not premultiplied.
struct IconPixmap {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};

IconPixmap iconPixmapFrom(const QImage& image);

/// A tooltip on the bus, (sa(iiay)ss).
struct ToolTip {
    QString iconName;
    QList<IconPixmap> icon;
    QString title;
    QString text;
};

QDBusArgument& operator<<(QDBusArgument& argument, const IconPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const ToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, ToolTip& toolTip);

/// Makes the types known to QtDBus; any number of calls.
void registerStatusNotifierTypes();

} // namespace orvello
