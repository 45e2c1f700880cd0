#pragma once

#include "platform/desktop/linux/StatusNotifierTypes.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QPoint>

#include <optional>

namespace orvello {

class DesktopImages;

/// The program's icon as org.kde.StatusNotifierItem on the bus, with its menu beside it as
/// com.canonical.dbusmenu. It says that the menu is what a click opens; hosts that call Activate all the same
/// are told by askedForMenu.
class StatusNotifierItem final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category SCRIPTABLE true)
    Q_PROPERTY(QString Id READ title SCRIPTABLE true)
    Q_PROPERTY(QString Title READ title SCRIPTABLE true)
    Q_PROPERTY(QString Status READ status SCRIPTABLE true)
    Q_PROPERTY(int WindowId READ windowId SCRIPTABLE true)
    Q_PROPERTY(QString IconThemePath READ none SCRIPTABLE true)
    Q_PROPERTY(QString IconName READ none SCRIPTABLE true)
    Q_PROPERTY(QList<orvello::IconPixmap> IconPixmap READ iconPixmap SCRIPTABLE true)
    Q_PROPERTY(QString OverlayIconName READ none SCRIPTABLE true)
    Q_PROPERTY(QList<orvello::IconPixmap> OverlayIconPixmap READ noPixmap SCRIPTABLE true)
    Q_PROPERTY(QString AttentionIconName READ none SCRIPTABLE true)
    Q_PROPERTY(QList<orvello::IconPixmap> AttentionIconPixmap READ noPixmap SCRIPTABLE true)
    Q_PROPERTY(QString AttentionMovieName READ none SCRIPTABLE true)
    Q_PROPERTY(orvello::ToolTip ToolTip READ toolTip SCRIPTABLE true)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu SCRIPTABLE true)
    Q_PROPERTY(QDBusObjectPath Menu READ menuPath SCRIPTABLE true)

  public:
    /// The menu is exported as it is; both objects must outlive the item.
    StatusNotifierItem(const DesktopImages& images, QObject& menu);
    ~StatusNotifierItem() override;

    /// Shows the item on the hosts of that bus. It must not be shown already.
    void show(const QDBusConnection& connection);
    /// Takes the item off the bus; without effect when it is not shown.
    void hide();

    void setImage(const QString& name);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString title() const { return QStringLiteral("Orvello"); }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString none() const { return QStringLiteral(""); }
    QList<IconPixmap> iconPixmap() const;
    QList<IconPixmap> noPixmap() const { return {}; }
    ToolTip toolTip() const;
    bool itemIsMenu() const { return true; }
    QDBusObjectPath menuPath() const;

    // NOLINTBEGIN(readability-identifier-naming): the names are those of the interface on the bus
  public Q_SLOTS:
    Q_SCRIPTABLE void Activate(int x, int y) { Q_EMIT askedForMenu({x, y}); }
    Q_SCRIPTABLE void ContextMenu(int x, int y) { Q_EMIT askedForMenu({x, y}); }
    Q_SCRIPTABLE void SecondaryActivate(int x, int y) { Q_EMIT askedForMenu({x, y}); }
    Q_SCRIPTABLE void Scroll(int /*delta*/, const QString& /*orientation*/) {}

  Q_SIGNALS:
    Q_SCRIPTABLE void NewTitle();
    Q_SCRIPTABLE void NewIcon();
    Q_SCRIPTABLE void NewAttentionIcon();
    Q_SCRIPTABLE void NewOverlayIcon();
    Q_SCRIPTABLE void NewToolTip();
    Q_SCRIPTABLE void NewStatus(const QString& status);
    // NOLINTEND(readability-identifier-naming)

    /// At a point in the device pixels of the X11 root window.
    void askedForMenu(QPoint point);

  private:
    const DesktopImages& images_;
    QObject& menu_;
    QString image_;
    QString service_;
    std::optional<QDBusConnection> connection_;
};

} // namespace orvello
