#pragma once

#include "platform/desktop/linux/IdleSource.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QString>

namespace orvello {

/// The idle monitor that Mutter (GNOME) and its descendant Muffin (Cinnamon) have on the session bus. One
/// that lets a question time out is left alone for five minutes, since every question holds the main thread.
class MutterIdleSource : public IdleSource {
  public:
    /// Where such a monitor is found.
    struct Address {
        const char* name;
        QString service;
        QString path;
        QString interface;
    };
    static Address mutter();
    static Address muffin();

    explicit MutterIdleSource(Address address, QDBusConnection bus = QDBusConnection::sessionBus());

    const char* name() const override { return address_.name; }
    std::optional<std::chrono::nanoseconds> idleTime() override;

  private:
    Address address_;
    QDBusConnection bus_;
    QDeadlineTimer leftAlone_{0};
};

} // namespace orvello
