#pragma once

#include "platform/Menu.h"
#include "platform/desktop/linux/DBusMenuTypes.h"

#include <QDBusContext>
#include <QDeadlineTimer>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <set>
#include <vector>

namespace orvello {

/// How hosts are judged by time.
struct MenuHostTimes {
    /// The menu closes when no host was heard from for so long: not all report it.
    std::chrono::milliseconds silence = std::chrono::seconds(60);
    /// For so long after the export AboutToShow comes from a host that fetches the menu without showing it.
    std::chrono::milliseconds fetch = std::chrono::seconds(5);
};

/// A menu as com.canonical.dbusmenu on the bus, version 3 of that interface. Hosts keep a copy of the entries
/// and draw it; changes are told to them once per turn of the event loop.
///
/// The menu counts as open from a host's AboutToShow or "opened" on, to its "closed" or "clicked".
///
/// Entry i of the menu has the id 2i+1, and 2i+2 while it is checked: hosts take over whether an entry has a
/// check mark only when they meet a new id. Id 0 is the menu.
class DBusMenu final : public QObject, protected QDBusContext, private MenuObserver {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version SCRIPTABLE true)
    Q_PROPERTY(QString TextDirection READ textDirection SCRIPTABLE true)
    Q_PROPERTY(QString Status READ status SCRIPTABLE true)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath SCRIPTABLE true)

  public:
    explicit DBusMenu(MenuHostTimes times);
    ~DBusMenu() override;

    /// The menu to export; null for none. It must outlive this object or be replaced before its end.
    void setMenu(Menu* menu);

    /// The menu has just been exported: hosts will fetch it.
    void expectFetch() { fetch_.setRemainingTime(times_.fetch); }
    /// Closes the menu if a host has opened it: the host is gone.
    void close();
    /// No longer closes the menu that a host has opened: it is shown by other means now.
    void release();

    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

    // NOLINTBEGIN(readability-identifier-naming): the names are those of the interface on the bus
  public Q_SLOTS:
    Q_SCRIPTABLE uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                                orvello::DBusMenuLayout& layout);
    Q_SCRIPTABLE QList<orvello::DBusMenuItem> GetGroupProperties(const QList<int>& ids,
                                                                 const QStringList& propertyNames);
    Q_SCRIPTABLE QDBusVariant GetProperty(int id, const QString& name);
    Q_SCRIPTABLE void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    Q_SCRIPTABLE QList<int> EventGroup(const QList<orvello::DBusMenuEvent>& events);
    Q_SCRIPTABLE bool AboutToShow(int id);
    Q_SCRIPTABLE QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

  Q_SIGNALS:
    Q_SCRIPTABLE void ItemsPropertiesUpdated(const QList<orvello::DBusMenuItem>& updatedProps,
                                             const QList<orvello::DBusMenuItemKeys>& removedProps);
    Q_SCRIPTABLE void LayoutUpdated(uint revision, int parent);
    Q_SCRIPTABLE void ItemActivationRequested(int id, uint timestamp);
    // NOLINTEND(readability-identifier-naming)

    /// The menu was opened or closed by a host.
    void openChanged();

  private:
    void menuItemChanged(MenuItem& item) override;
    void sendSoon();
    /// Tells the hosts what changed since the last call; false if nothing did.
    bool sendChanges();
    bool isKnown(int id) const;
    /// The entry that has the id, checked or not; null if there is none.
    MenuItem* itemFor(int id) const;
    QVariantMap propertiesOf(int id, const QStringList& names) const;
    /// False if there is no such entry.
    bool handle(int id, const QString& eventId);
    /// Opens and validates; whether that changed an entry.
    bool open();
    /// Validates, and opens unless the host only fetches; whether that changed an entry.
    bool aboutToShow();
    void heardFromHost();
    void refuse(int id) const;

    Menu* menu_ = nullptr;
    MenuHostTimes times_;
    QTimer expiry_;
    QDeadlineTimer fetch_;
    std::set<std::size_t> changedItems_;
    std::vector<int> exportedIds_;
    uint revision_ = 0;
    bool sendPending_ = false;
    bool openByHost_ = false;
};

} // namespace orvello
