#include "platform/desktop/linux/TrayItem.h"

#include "platform/desktop/DesktopImages.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QSystemTrayIcon>

namespace orvello {

namespace {

/// Qt keeps each screen's origin and scales what lies inside it.
QPoint fromDevicePixels(QPoint point) {
    for (const auto* screen : QGuiApplication::screens()) {
        const QRect logical = screen->geometry();
        const qreal ratio = screen->devicePixelRatio();
        if (QRect(logical.topLeft(), logical.size() * ratio).contains(point))
            return logical.topLeft() + (point - logical.topLeft()) / ratio;
    }
    return point;
}

} // namespace

TrayItem::TrayItem(Tray& tray, const DesktopImages& images, MenuHostTimes times)
    : tray_(tray)
    , images_(images)
    , busMenu_(times)
    , notifier_(images, busMenu_) {
    connect(&tray_, &Tray::changed, this, &TrayItem::followTray);
    connect(&busMenu_, &DBusMenu::openChanged, this, &TrayItem::updateImage);
    connect(&notifier_, &StatusNotifierItem::askedForMenu, this, &TrayItem::toggleMenuAtDevicePixel);
    // After the item has got its images and menu.
    QMetaObject::invokeMethod(this, &TrayItem::followTray, Qt::QueuedConnection);
}

TrayItem::~TrayItem() {
    leave();
}

void TrayItem::setImage(std::string_view name) {
    image_ = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    updateImage();
}

void TrayItem::setAlternateImage(std::string_view name) {
    alternateImage_ = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    updateImage();
}

void TrayItem::setMenu(Menu& menu) {
    ownMenu_.reset();
    menu_ = &menu;
    busMenu_.setMenu(menu_);
}

void TrayItem::followTray() {
    if (tray_.kind() == kind_)
        return;
    leave();
    kind_ = tray_.kind();
    if (kind_ == TrayKind::StatusNotifier) {
        notifier_.show(tray_.bus().connection());
        busMenu_.expectFetch();
    } else if (kind_ == TrayKind::XEmbed) {
        showInXEmbedTray();
    }
}

void TrayItem::leave() {
    busMenu_.close();
    if (ownMenu_)
        ownMenu_->hide();
    notifier_.hide();
    xembedIcon_.reset();
}

void TrayItem::showInXEmbedTray() {
    // Qt decides once for a process between the bus and XEmbed, so this must not be made while a host is
    // there.
    xembedIcon_ = std::make_unique<QSystemTrayIcon>();
    xembedIcon_->setToolTip(notifier_.title());
    connect(xembedIcon_.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason != QSystemTrayIcon::DoubleClick) // its first click was for the menu
                    toggleMenuAt(QCursor::pos());
            });
    updateImage();
    xembedIcon_->show();
}

void TrayItem::updateImage() {
    const bool highlighted = menu_ && menu_->isOpen() && !alternateImage_.isEmpty();
    const QString& name = highlighted ? alternateImage_ : image_;
    notifier_.setImage(name);
    if (xembedIcon_)
        xembedIcon_->setIcon(images_.icon(name));
}

void TrayItem::toggleMenuAtDevicePixel(QPoint point) {
    // Elsewhere than on X11 a program cannot place a menu; the hosts there draw it.
    if (qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
        toggleMenuAt(fromDevicePixels(point));
}

void TrayItem::toggleMenuAt(QPoint point) {
    if (!menu_)
        return;
    if (!ownMenu_) {
        ownMenu_ = std::make_unique<TrayMenu>(*menu_);
        connect(ownMenu_.get(), &TrayMenu::opening, &busMenu_, &DBusMenu::release);
        connect(ownMenu_.get(), &TrayMenu::openChanged, this, &TrayItem::updateImage);
    }
    ownMenu_->toggleAt(point);
}

} // namespace orvello
