#include "bench/tray-host/TrayWatcher.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <cstdio>
#include <ctime>

namespace orvello::bench {

namespace {

void print(const char* event, unsigned process) {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    std::printf("%s %u %lld\n", event, process,
                static_cast<long long>(now.tv_sec) * 1'000'000'000 + now.tv_nsec);
    std::fflush(stdout);
}

} // namespace

void TrayWatcher::RegisterStatusNotifierItem(const QString& service) {
    const auto bus = connection();
    const auto sender = message().service();
    const uint process = bus.interface()->servicePid(sender);
    print("registered", process);
    const bool isPath = service.startsWith(u'/');
    items_.append(isPath ? sender + service : service);
    Q_EMIT StatusNotifierItemRegistered(items_.last());

    auto question = QDBusMessage::createMethodCall(
        isPath ? sender : service, isPath ? service : QStringLiteral("/StatusNotifierItem"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << QStringLiteral("org.kde.StatusNotifierItem") << QStringLiteral("IconPixmap");
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [process](QDBusPendingCallWatcher* finished) {
        const QDBusPendingReply<QDBusVariant> reply = *finished;
        print(reply.isError() ? "failed" : "shown", process);
        finished->deleteLater();
    });
}

} // namespace orvello::bench
