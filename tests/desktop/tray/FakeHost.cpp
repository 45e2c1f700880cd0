#include "tests/desktop/tray/FakeHost.h"

#include "platform/desktop/linux/DBusMenuTypes.h"
#include "tests/desktop/EventLoop.h"

#include <QDBusConnectionInterface>

namespace orvello {

using namespace Qt::StringLiterals;

namespace {

const QString watcher = u"org.kde.StatusNotifierWatcher"_s;

QString connectionName() {
    static int count = 0;
    return u"fake-host-%1"_s.arg(++count);
}

} // namespace

FakeHost::FakeHost(const QString& busAddress)
    : bus_(QDBusConnection::connectToBus(busAddress, connectionName())) {
    bus_.registerObject(u"/StatusNotifierWatcher"_s, this, QDBusConnection::ExportScriptableContents);
    for (const auto& member : {u"NewIcon"_s, u"LayoutUpdated"_s, u"ItemsPropertiesUpdated"_s})
        bus_.connect({}, {}, {}, member, this, SLOT(noteSignal(QDBusMessage)));
}

FakeHost::~FakeHost() {
    QDBusConnection::disconnectFromBus(bus_.name());
}

void FakeHost::appear(bool withHost) {
    hasHost_ = withHost;
    bus_.registerService(watcher);
}

void FakeHost::setHost(bool present) {
    hasHost_ = present;
    if (present)
        Q_EMIT StatusNotifierHostRegistered();
    else
        Q_EMIT StatusNotifierHostUnregistered();
}

void FakeHost::vanish() {
    bus_.unregisterService(watcher);
    hasHost_ = false;
}

QStringList FakeHost::items() const {
    const QStringList names = bus_.interface()->registeredServiceNames();
    return names.filter(u"org.kde.StatusNotifierItem-"_s);
}

QDBusPendingCall FakeHost::startCall(const QString& path, const QString& interface, const QString& member,
                                     const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(registrations.constLast(), path, interface, member);
    message.setArguments(arguments);
    return bus_.asyncCall(message);
}

QDBusMessage FakeHost::call(const QString& path, const QString& interface, const QString& member,
                            const QVariantList& arguments) {
    const auto pending = startCall(path, interface, member, arguments);
    waitUntil([&pending] { return pending.isFinished(); });
    return pending.reply();
}

QDBusMessage FakeHost::callItem(const QString& member, const QVariantList& arguments) {
    return call(u"/StatusNotifierItem"_s, u"org.kde.StatusNotifierItem"_s, member, arguments);
}

QDBusMessage FakeHost::callMenu(const QString& member, const QVariantList& arguments) {
    return call(u"/MenuBar"_s, u"com.canonical.dbusmenu"_s, member, arguments);
}

QVariant FakeHost::property(const QString& path, const QString& interface, const QString& name) {
    const auto reply = call(path, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {interface, name});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
}

void FakeHost::RegisterStatusNotifierItem(const QString& service) {
    registrations.append(service);
}

void FakeHost::noteSignal(const QDBusMessage& signal) {
    signalled.append(signal.member());
    if (signal.member() == u"ItemsPropertiesUpdated")
        updatedCounts.append(qdbus_cast<QList<DBusMenuItem>>(signal.arguments().constFirst()).size());
}

} // namespace orvello
