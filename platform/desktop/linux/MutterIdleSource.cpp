#include "platform/desktop/linux/MutterIdleSource.h"

#include <QDBusMessage>

#include <algorithm>
#include <utility>

namespace orvello {

MutterIdleSource::Address MutterIdleSource::mutter() {
    return {"org.gnome.Mutter.IdleMonitor", QStringLiteral("org.gnome.Mutter.IdleMonitor"),
            QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core"),
            QStringLiteral("org.gnome.Mutter.IdleMonitor")};
}

MutterIdleSource::Address MutterIdleSource::muffin() {
    return {"org.cinnamon.Muffin.IdleMonitor", QStringLiteral("org.cinnamon.Muffin.IdleMonitor"),
            QStringLiteral("/org/cinnamon/Muffin/IdleMonitor/Core"),
            QStringLiteral("org.cinnamon.Muffin.IdleMonitor")};
}

MutterIdleSource::MutterIdleSource(Address address, QDBusConnection bus)
    : address_(std::move(address))
    , bus_(std::move(bus)) {}

std::optional<std::chrono::nanoseconds> MutterIdleSource::idleTime() {
    if (!leftAlone_.hasExpired() || !bus_.isConnected())
        return std::nullopt;
    auto question = QDBusMessage::createMethodCall(address_.service, address_.path, address_.interface,
                                                   QStringLiteral("GetIdletime"));
    question.setAutoStartService(false);
    constexpr int timeLimit = 500; // milliseconds
    const auto answer = bus_.call(question, QDBus::Block, timeLimit);
    if (answer.type() != QDBusMessage::ReplyMessage) {
        if (QDBusError(answer).type() == QDBusError::NoReply)
            leftAlone_.setRemainingTime(std::chrono::minutes(5));
        return std::nullopt;
    }
    bool isNumber = false;
    const auto milliseconds = answer.arguments().value(0).toULongLong(&isNumber);
    if (!isNumber)
        return std::nullopt;
    constexpr auto longest = std::chrono::milliseconds(std::chrono::hours(24 * 365 * 100));
    return std::min(std::chrono::milliseconds(static_cast<std::int64_t>(milliseconds & INT64_MAX)), longest);
}

} // namespace orvello
