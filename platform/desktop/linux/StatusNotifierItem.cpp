#include "platform/desktop/linux/StatusNotifierItem.h"

#include "platform/desktop/DesktopImages.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCall>

namespace orvello {

using namespace Qt::StringLiterals;

namespace {

const QString itemPath = u"/StatusNotifierItem"_s;
const QString itemMenuPath = u"/MenuBar"_s;

} // namespace

StatusNotifierItem::StatusNotifierItem(const DesktopImages& images, QObject& menu)
    : images_(images)
    , menu_(menu) {
    registerStatusNotifierTypes();
}

StatusNotifierItem::~StatusNotifierItem() {
    hide();
}

void StatusNotifierItem::show(const QDBusConnection& connection) {
    connection_ = connection;
    connection_->registerObject(itemPath, this, QDBusConnection::ExportScriptableContents);
    connection_->registerObject(itemMenuPath, &menu_, QDBusConnection::ExportScriptableContents);
    // A name of its own lets the item leave the watcher while the connection stays; where a sandbox refuses
    // the name, the connection's does.
    service_ = u"org.kde.StatusNotifierItem-%1-1"_s.arg(QCoreApplication::applicationPid());
    if (!connection_->registerService(service_))
        service_ = connection_->baseService();
    auto call = QDBusMessage::createMethodCall(statusNotifierWatcher, statusNotifierWatcherPath,
                                               statusNotifierWatcher, u"RegisterStatusNotifierItem"_s);
    call.setAutoStartService(false);
    call << service_;
    connection_->asyncCall(call);
}

void StatusNotifierItem::hide() {
    if (!connection_)
        return;
    if (service_ != connection_->baseService())
        connection_->unregisterService(service_);
    connection_->unregisterObject(itemPath);
    connection_->unregisterObject(itemMenuPath);
    connection_.reset();
}

void StatusNotifierItem::setImage(const QString& name) {
    if (image_ == name)
        return;
    image_ = name;
    Q_EMIT NewIcon();
}

QList<IconPixmap> StatusNotifierItem::iconPixmap() const {
    QList<IconPixmap> pixmaps;
    for (const int side : {16, 22, 24, 32, 48, 64})
        if (const QImage image = images_.image(image_, side); !image.isNull())
            pixmaps.append(iconPixmapFrom(image));
    return pixmaps;
}

ToolTip StatusNotifierItem::toolTip() const {
    return {none(), {}, title(), none()};
}

QDBusObjectPath StatusNotifierItem::menuPath() const {
    return QDBusObjectPath(itemMenuPath);
}

} // namespace orvello
