#pragma once

#include "platform/desktop/linux/DBusMenuTypes.h"
#include "tests/desktop/EventLoop.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
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
    explicit FakeHost(const QString& busAddress)
        : bus_(QDBusConnection::connectToBus(busAddress, QStringLiteral("fake-host"))) {
        bus_.registerObject(QStringLiteral("/StatusNotifierWatcher"), this,
                            QDBusConnection::ExportScriptableContents);
        for (const auto* member : {"NewIcon", "LayoutUpdated", "ItemsPropertiesUpdated"})
            bus_.connect({}, {}, {}, QLatin1String(member), this, SLOT(noteSignal(QDBusMessage)));
    }
    ~FakeHost() override { QDBusConnection::disconnectFromBus(bus_.name()); }

    bool hasHost() const { return hasHost_; }
    /// Takes the watcher's name; the host registers at once or later.
    void appear(bool withHost) {
        hasHost_ = withHost;
        bus_.registerService(watcher_);
    }
    void setHost(bool present) {
        hasHost_ = present;
        Q_EMIT present ? StatusNotifierHostRegistered() : StatusNotifierHostUnregistered();
    }
    /// Gives up the watcher's name.
    void vanish() {
        hasHost_ = false;
        bus_.unregisterService(watcher_);
    }

    /// The service names of the items that registered, in order.
    QStringList registrations;
    /// The signals of the items, in order; ItemsPropertiesUpdated with the number of entries that it is
    /// about.
    QStringList signalled;

    /// The items that are on the bus now.
    QStringList items() const {
        const QStringList names = bus_.interface()->registeredServiceNames();
        return names.filter(QStringLiteral("org.kde.StatusNotifierItem-"));
    }

    /// Calls the menu of the item that registered last.
    QDBusPendingCall startMenuCall(const QString& member, const QVariantList& arguments) {
        return startCall(QStringLiteral("/MenuBar"), QStringLiteral("com.canonical.dbusmenu"), member,
                         arguments);
    }
    /// These wait for the answer.
    QDBusMessage callMenu(const QString& member, const QVariantList& arguments) {
        return answerTo(startMenuCall(member, arguments));
    }
    QDBusMessage callItem(const QString& member, const QVariantList& arguments) {
        return answerTo(startCall(QStringLiteral("/StatusNotifierItem"),
                                  QStringLiteral("org.kde.StatusNotifierItem"), member, arguments));
    }
    QVariant property(const QString& path, const QString& interface, const QString& name) {
        const auto reply = answerTo(startCall(path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                              QStringLiteral("Get"), {interface, name}));
        return reply.arguments().value(0).value<QDBusVariant>().variant();
    }

  public Q_SLOTS:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service) { registrations.append(service); }

  Q_SIGNALS:
    Q_SCRIPTABLE void StatusNotifierHostRegistered();
    Q_SCRIPTABLE void StatusNotifierHostUnregistered();

  private Q_SLOTS:
    void noteSignal(const QDBusMessage& signal) {
        QString text = signal.member();
        if (text == QStringLiteral("ItemsPropertiesUpdated")) {
            const auto items = qdbus_cast<QList<DBusMenuItem>>(signal.arguments().constFirst());
            text += QStringLiteral(" %1").arg(items.size());
        }
        signalled.append(text);
    }

  private:
    QDBusPendingCall startCall(const QString& path, const QString& interface, const QString& member,
                               const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(registrations.constLast(), path, interface, member);
        message.setArguments(arguments);
        return bus_.asyncCall(message);
    }
    static QDBusMessage answerTo(const QDBusPendingCall& call) {
        waitUntil([&call] { return call.isFinished(); });
        return call.reply();
    }

    QString watcher_ = QStringLiteral("org.kde.StatusNotifierWatcher");
    QDBusConnection bus_;
    bool hasHost_ = false;
};

} // namespace orvello
