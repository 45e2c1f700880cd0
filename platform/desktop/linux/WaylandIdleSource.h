#pragma once

#include "platform/desktop/linux/IdleSource.h"

#include <QSocketNotifier>

#include <cstdint>
#include <memory>
#include <string_view>

struct ext_idle_notification_v1;
struct ext_idle_notifier_v1;
struct wl_display;
struct wl_registry;
struct wl_seat;

namespace orvello {

/// A Wayland compositor's ext-idle-notify protocol, over a connection of its own. The compositor tells when
/// the first seat has been idle for a given time and when it is in use again; up to that time the idle time
/// is 0. Those two events are the only wake-ups.
class WaylandIdleSource : public IdleSource {
  public:
    /// `threshold` is the least idle time that is told from none.
    explicit WaylandIdleSource(std::chrono::milliseconds threshold = std::chrono::minutes(1));
    ~WaylandIdleSource() override;
    WaylandIdleSource(const WaylandIdleSource&) = delete;
    WaylandIdleSource& operator=(const WaylandIdleSource&) = delete;

    const char* name() const override { return "ext-idle-notify-v1"; }
    std::optional<std::chrono::nanoseconds> idleTime() override;

  private:
    struct Events;

    bool connect();
    void disconnect();
    bool roundTrip();
    bool receive(std::chrono::milliseconds wait);
    void bindGlobal(std::uint32_t global, std::string_view interface);

    std::chrono::milliseconds threshold_;
    wl_display* display_ = nullptr;
    wl_registry* registry_ = nullptr;
    wl_seat* seat_ = nullptr;
    std::uint32_t seatGlobal_ = 0;
    ext_idle_notifier_v1* notifier_ = nullptr;
    ext_idle_notification_v1* notification_ = nullptr;
    std::unique_ptr<QSocketNotifier> readable_;
    std::optional<std::chrono::steady_clock::time_point> idleSince_;
    bool seatLost_ = false;
    bool unsupported_ = false; ///< a compositor that answered lacks the protocol
};

} // namespace orvello
