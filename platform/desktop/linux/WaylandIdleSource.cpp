#include "platform/desktop/linux/WaylandIdleSource.h"

#include "ext-idle-notify-v1-client-protocol.h"

#include <wayland-client.h>

#include <cerrno>
#include <poll.h>

namespace orvello {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto answerLimit = std::chrono::milliseconds(500);

} // namespace

/// The listeners of the Wayland objects, in the form that their C interface asks for.
struct WaylandIdleSource::Events {
    static void global(void* data, wl_registry* /*registry*/, std::uint32_t name, const char* interface,
                       std::uint32_t /*version*/) {
        static_cast<WaylandIdleSource*>(data)->bindGlobal(name, interface);
    }
    static void globalRemove(void* data, wl_registry* /*registry*/, std::uint32_t name) {
        auto* self = static_cast<WaylandIdleSource*>(data);
        if (self->seat_ && name == self->seatGlobal_)
            self->seatLost_ = true;
    }
    static void idled(void* data, ext_idle_notification_v1* /*notification*/) {
        auto* self = static_cast<WaylandIdleSource*>(data);
        self->idleSince_ = Clock::now() - self->threshold_;
    }
    static void resumed(void* data, ext_idle_notification_v1* /*notification*/) {
        static_cast<WaylandIdleSource*>(data)->idleSince_.reset();
    }
    static void done(void* data, wl_callback* /*callback*/, std::uint32_t /*serial*/) {
        *static_cast<bool*>(data) = true;
    }

    static constexpr wl_registry_listener registry{global, globalRemove};
    static constexpr ext_idle_notification_v1_listener notification{idled, resumed};
    static constexpr wl_callback_listener callback{done};
};

WaylandIdleSource::WaylandIdleSource(std::chrono::milliseconds threshold)
    : threshold_(threshold) {}

WaylandIdleSource::~WaylandIdleSource() {
    disconnect();
}

std::optional<std::chrono::nanoseconds> WaylandIdleSource::idleTime() {
    if (unsupported_)
        return std::nullopt;
    if (display_ && (!receive(std::chrono::milliseconds(0)) || seatLost_))
        disconnect();
    if (!display_ && !connect()) {
        disconnect();
        return std::nullopt;
    }
    return idleSince_ ? Clock::now() - *idleSince_ : std::chrono::nanoseconds(0);
}

bool WaylandIdleSource::connect() {
    display_ = wl_display_connect(nullptr);
    if (!display_)
        return false;
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &Events::registry, this);
    if (!roundTrip())
        return false;
    unsupported_ = !notifier_;
    if (!notifier_ || !seat_)
        return false;
    notification_ = ext_idle_notifier_v1_get_idle_notification(
        notifier_, static_cast<std::uint32_t>(threshold_.count()), seat_);
    ext_idle_notification_v1_add_listener(notification_, &Events::notification, this);
    if (!receive(std::chrono::milliseconds(0)))
        return false;
    readable_ = std::make_unique<QSocketNotifier>(wl_display_get_fd(display_), QSocketNotifier::Read);
    QObject::connect(readable_.get(), &QSocketNotifier::activated, readable_.get(), [this] {
        // A lost connection stays readable; the next question makes a new one.
        if (!receive(std::chrono::milliseconds(0)))
            readable_->setEnabled(false);
    });
    return true;
}

void WaylandIdleSource::disconnect() {
    if (!display_)
        return;
    readable_.reset();
    if (notification_)
        ext_idle_notification_v1_destroy(notification_);
    if (notifier_)
        ext_idle_notifier_v1_destroy(notifier_);
    if (seat_)
        wl_seat_destroy(seat_);
    wl_registry_destroy(registry_);
    wl_display_disconnect(display_);
    display_ = nullptr;
    registry_ = nullptr;
    seat_ = nullptr;
    notifier_ = nullptr;
    notification_ = nullptr;
    idleSince_.reset();
    seatLost_ = false;
}

/// Waits until the compositor has handled what was sent, but no longer than the limit.
bool WaylandIdleSource::roundTrip() {
    bool answered = false;
    auto* callback = wl_display_sync(display_);
    wl_callback_add_listener(callback, &Events::callback, &answered);
    const auto limit = Clock::now() + answerLimit;
    bool connected = true;
    while (connected && !answered && Clock::now() < limit)
        connected = receive(std::chrono::ceil<std::chrono::milliseconds>(limit - Clock::now()));
    wl_callback_destroy(callback);
    return answered;
}

/// Sends what is pending, reads what arrives within the time and handles it. False when the connection is
/// lost.
bool WaylandIdleSource::receive(std::chrono::milliseconds wait) {
    while (wl_display_prepare_read(display_) != 0)
        if (wl_display_dispatch_pending(display_) < 0)
            return false;
    if (wl_display_flush(display_) < 0 && errno != EAGAIN) {
        wl_display_cancel_read(display_);
        return false;
    }
    pollfd readable{wl_display_get_fd(display_), POLLIN, 0};
    if (poll(&readable, 1, static_cast<int>(wait.count())) <= 0)
        wl_display_cancel_read(display_);
    else if (wl_display_read_events(display_) < 0)
        return false;
    return wl_display_dispatch_pending(display_) >= 0;
}

void WaylandIdleSource::bindGlobal(std::uint32_t global, std::string_view interface) {
    if (interface == wl_seat_interface.name && !seat_) {
        seat_ = static_cast<wl_seat*>(wl_registry_bind(registry_, global, &wl_seat_interface, 1));
        seatGlobal_ = global;
    } else if (interface == ext_idle_notifier_v1_interface.name && !notifier_) {
        notifier_ = static_cast<ext_idle_notifier_v1*>(
            wl_registry_bind(registry_, global, &ext_idle_notifier_v1_interface, 1));
    }
}

} // namespace orvello
