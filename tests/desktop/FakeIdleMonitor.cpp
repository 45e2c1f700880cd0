#include "tests/desktop/FakeIdleMonitor.h"

#include <QDBusMessage>

namespace orvello {

FakeIdleMonitor::FakeIdleMonitor(const MutterIdleSource::Address& address)
    : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("idle monitor"))) {
    moveToThread(&thread_);
    thread_.start();
    bus_.registerVirtualObject(address.path, this);
    bus_.registerService(address.service);
}

FakeIdleMonitor::~FakeIdleMonitor() {
    QDBusConnection::disconnectFromBus(bus_.name());
    thread_.quit();
    thread_.wait();
}

void FakeIdleMonitor::setAnswer(std::function<QVariant()> answer) {
    const std::lock_guard lock(mutex_);
    answer_ = std::move(answer);
}

int FakeIdleMonitor::questions() {
    const std::lock_guard lock(mutex_);
    return questions_;
}

QString FakeIdleMonitor::introspect(const QString& /*path*/) const {
    return {};
}

bool FakeIdleMonitor::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.member() != QLatin1String("GetIdletime"))
        return false;
    const std::lock_guard lock(mutex_);
    ++questions_;
    message.setDelayedReply(true);
    if (answer_)
        connection.send(message.createReply(answer_()));
    return true;
}

} // namespace orvello
