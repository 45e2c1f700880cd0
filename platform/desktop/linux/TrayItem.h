#pragma once

#include "platform/StatusItem.h"
#include "platform/desktop/linux/DBusMenu.h"
#include "platform/desktop/linux/StatusNotifierItem.h"
#include "platform/desktop/linux/Tray.h"
#include "platform/desktop/linux/TrayMenu.h"

#include <QObject>
#include <QPoint>
#include <QString>

#include <memory>

class QSystemTrayIcon;

namespace orvello {

class DesktopImages;

/// The status item on whatever tray the session has. The program draws a menu of its own only for XEmbed
/// trays and for hosts that leave it to the program; nothing of that exists before it is needed.
class TrayItem final : public QObject, public StatusItem {
    Q_OBJECT

  public:
    TrayItem(Tray& tray, const DesktopImages& images, MenuHostTimes times = {});
    ~TrayItem() override;

    void setImage(std::string_view name) override;
    void setAlternateImage(std::string_view name) override;
    void setMenu(Menu& menu) override;

  private:
    void followTray();
    void leave();
    void showInXEmbedTray();
    void updateImage();
    void toggleMenuAt(QPoint point);
    void toggleMenuAtDevicePixel(QPoint point);

    Tray& tray_;
    const DesktopImages& images_;
    QString image_;
    QString alternateImage_;
    Menu* menu_ = nullptr;
    TrayKind kind_ = TrayKind::None;
    DBusMenu busMenu_;
    StatusNotifierItem notifier_;
    std::unique_ptr<QSystemTrayIcon> xembedIcon_;
    std::unique_ptr<TrayMenu> ownMenu_;
};

} // namespace orvello
