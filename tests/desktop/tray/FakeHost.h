#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QObject>
#include <QStringList>
#include <QVariant>

namespace orvello {

/// A StatusNotifierWatcher with or without a host, on a connection of its own. It notes down which items
/// register and what they signal, and calls them as a host does.
class FakeHost final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost SCRIPTABLE true)

  public:
    explicit FakeHost(const QString& busAddress);
    ~FakeHost() override;

    bool hasHost() const { return hasHost_; }
    /// Takes the watcher's name; the host registers at once or later.
    void appear(bool withHost);
    void setHost(bool present);
    /// Gives up the watcher's name.
    void vanish();

    /// The service names of the items that registered, in order.
    QStringList registrations;
    /// The signals of the items, "member" or "member argument" for the revision of a layout, in order.
    QStringList signalled;
    /// How many entries each ItemsPropertiesUpdated was about.
    QList<qsizetype> updatedCounts;

    /// The items that are on the bus now.
    QStringList items() const;

    /// Calls the item that registered last and waits for its answer.
    QDBusMessage callItem(const QString& member, const QVariantList& arguments = {});
    QDBusMessage callMenu(const QString& member, const QVariantList& arguments = {});
    /// Calls it without waiting.
    QDBusPendingCall startCall(const QString& path, const QString& interface, const QString& member,
                               const QVariantList& arguments);
    QVariant property(const QString& path, const QString& interface, const QString& name);

  public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service);

  Q_SIGNALS:
    Q_SCRIPTABLE void StatusNotifierHostRegistered();
    Q_SCRIPTABLE void StatusNotifierHostUnregistered();

  private Q_SLOTS:
    void noteSignal(const QDBusMessage& signal);

  private:
    QDBusMessage call(const QString& path, const QString& interface, const QString& member,
                      const QVariantList& arguments);

    QDBusConnection bus_;
    bool hasHost_ = false;
};

} // namespace orvello
