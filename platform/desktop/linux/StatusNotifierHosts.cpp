#include "platform/desktop/linux/StatusNotifierHosts.h"

#include "platform/desktop/linux/StatusNotifierTypes.h"
#include "platform/desktop/linux/TrayBus.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDBusVariant>

#include <limits>
#include <utility>

namespace orvello {

using namespace Qt::StringLiterals;

namespace {

constexpr int settleMilliseconds = 5000;
/// A watcher may be long in starting, as at login; if it ends instead, the bus says so.
constexpr int waitForever = std::numeric_limits<int>::max();

QDBusMessage question() {
    auto call = QDBusMessage::createMethodCall(statusNotifierWatcher, statusNotifierWatcherPath,
                                               u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setAutoStartService(false);
    call << QString(statusNotifierWatcher) << u"IsStatusNotifierHostRegistered"_s;
    return call;
}

StatusNotifierHosts::State stateOf(const QDBusReply<QDBusVariant>& reply, StatusNotifierHosts::State before) {
    using State = StatusNotifierHosts::State;
    if (reply.isValid())
        return reply.value().variant().toBool() ? State::Present : State::Absent;
    switch (reply.error().type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return before;
    default:
        return State::Absent;
    }
}

} // namespace

StatusNotifierHosts::StatusNotifierHosts(TrayBus& bus)
    : bus_(bus) {
    owner_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(&owner_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { watcherReplaced(owner); });
    connect(&bus_, &TrayBus::connected, this, &StatusNotifierHosts::attach);
    connect(&bus_, &TrayBus::lost, this, [this] { watcherReplaced({}); });
    if (bus_.isConnected())
        attach();
    else
        state_ = State::Absent;
}

void StatusNotifierHosts::attach() {
    QDBusConnection connection = bus_.connection();
    owner_.setConnection(connection);
    owner_.setWatchedServices({statusNotifierWatcher});
    for (const auto& signal : {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        connection.connect({}, statusNotifierWatcherPath, statusNotifierWatcher, signal, this, SLOT(ask()));
    ask();
}

void StatusNotifierHosts::watcherReplaced(const QString& newOwner) {
    delete std::exchange(question_, nullptr);
    setState(State::Absent);
    if (!newOwner.isEmpty())
        ask();
}

void StatusNotifierHosts::ask() {
    delete std::exchange(question_, nullptr);
    question_ = new QDBusPendingCallWatcher(bus_.connection().asyncCall(question(), waitForever), this);
    connect(question_, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* answer) {
        answer->deleteLater();
        question_ = nullptr;
        setState(stateOf(QDBusPendingReply<QDBusVariant>(*answer).reply(), state_));
    });
}

void StatusNotifierHosts::settle() {
    if (state_ == State::Unknown && !std::exchange(settled_, true)) {
        const QDBusReply<QDBusVariant> reply =
            bus_.connection().call(question(), QDBus::Block, settleMilliseconds);
        setState(stateOf(reply, state_));
    }
}

void StatusNotifierHosts::setState(State state) {
    if (state == state_)
        return;
    state_ = state;
    Q_EMIT changed();
}

} // namespace orvello
