#include "ext-idle-notify-v1-server-protocol.h"
#include "platform/desktop/linux/WaylandIdleSource.h"
#include "tests/desktop/EventLoop.h"

#include <QAbstractEventDispatcher>
#include <QSignalSpy>

#include <gtest/gtest.h>
#include <wayland-server.h>

#include <atomic>
#include <thread>
#include <vector>

namespace orvello {
namespace {

using namespace std::chrono_literals;

constexpr const char* socketName = "tiny";

/// A Wayland compositor with a seat and, unless told otherwise, ext-idle-notify. It shows nothing and runs on
/// a thread of its own.
class TinyCompositor {
  public:
    explicit TinyCompositor(bool offersIdleNotify = true) {
        wl_global_create(display_, &wl_seat_interface, 1, this, bindSeat);
        if (offersIdleNotify)
            wl_global_create(display_, &ext_idle_notifier_v1_interface, 1, this, bindNotifier);
        wl_display_add_socket(display_, socketName);
        thread_ = std::thread([this] { run(); });
    }
    /// Hangs up on every client.
    ~TinyCompositor() {
        ending_ = true;
        thread_.join();
        wl_display_destroy_clients(display_);
        wl_display_destroy(display_);
    }
    TinyCompositor(const TinyCompositor&) = delete;
    TinyCompositor& operator=(const TinyCompositor&) = delete;

    std::atomic<bool> idle = false;         ///< whether the user uses the seat
    std::atomic<std::uint32_t> timeout = 0; ///< milliseconds; what was last asked for

  private:
    void run() {
        for (bool told = false; !ending_;) {
            wl_event_loop_dispatch(wl_display_get_event_loop(display_), 5);
            if (const bool now = idle; std::exchange(told, now) != now)
                for (auto* notification : notifications_)
                    now ? ext_idle_notification_v1_send_idled(notification)
                        : ext_idle_notification_v1_send_resumed(notification);
            wl_display_flush_clients(display_);
        }
    }

    static void destroyResource(wl_client* /*client*/, wl_resource* resource) {
        wl_resource_destroy(resource);
    }
    static void forget(wl_resource* notification) {
        auto* self = static_cast<TinyCompositor*>(wl_resource_get_user_data(notification));
        std::erase(self->notifications_, notification);
    }
    static void getNotification(wl_client* client, wl_resource* notifier, std::uint32_t id,
                                std::uint32_t timeout, wl_resource* /*seat*/) {
        static constexpr struct ext_idle_notification_v1_interface requests { destroyResource };
        auto* self = static_cast<TinyCompositor*>(wl_resource_get_user_data(notifier));
        auto* notification = wl_resource_create(client, &ext_idle_notification_v1_interface, 1, id);
        wl_resource_set_implementation(notification, &requests, self, forget);
        self->notifications_.push_back(notification);
        self->timeout = timeout;
    }
    static void bindNotifier(wl_client* client, void* self, std::uint32_t /*version*/, std::uint32_t id) {
        static constexpr struct ext_idle_notifier_v1_interface requests { destroyResource, getNotification };
        auto* notifier = wl_resource_create(client, &ext_idle_notifier_v1_interface, 1, id);
        wl_resource_set_implementation(notifier, &requests, self, nullptr);
    }
    static void bindSeat(wl_client* client, void* /*self*/, std::uint32_t /*version*/, std::uint32_t id) {
        wl_resource_create(client, &wl_seat_interface, 1, id);
    }

    wl_display* display_ = wl_display_create();
    std::vector<wl_resource*> notifications_;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

class WaylandIdleTest : public testing::Test {
  protected:
    void SetUp() override { qputenv("WAYLAND_DISPLAY", socketName); }
    void TearDown() override { qunsetenv("WAYLAND_DISPLAY"); }

    WaylandIdleSource source_{90s};
};

TEST_F(WaylandIdleTest, CountsFromTheThresholdOnWithEveryCompositorThatComes) {
    for (int round = 0; round < 2; ++round) {
        const QSignalSpy sleeps(QAbstractEventDispatcher::instance(),
                                &QAbstractEventDispatcher::aboutToBlock);
        letPass(50ms);
        EXPECT_LE(sleeps.count(), 5) << "a lost connection keeps the loop busy";
        EXPECT_EQ(source_.idleTime(), std::nullopt) << "no compositor";
        TinyCompositor compositor;
        EXPECT_EQ(source_.idleTime(), 0ns);
        ASSERT_TRUE(waitUntil([&] { return compositor.timeout == 90'000; }));
        for (int stay = 0; stay < 2; ++stay) {
            compositor.idle = true;
            letPass(200ms); // the event is taken when it comes, not when somebody asks
            const auto earlier = source_.idleTime().value();
            EXPECT_GE(earlier, 90s + 50ms);
            letPass(20ms);
            EXPECT_GE(source_.idleTime().value(), earlier + 20ms);
            compositor.idle = false;
            EXPECT_TRUE(waitUntil([&] { return source_.idleTime() == 0ns; }));
        }
        compositor.idle = true;
        EXPECT_TRUE(waitUntil([&] { return source_.idleTime() >= 90s; }));
    }
}

TEST_F(WaylandIdleTest, HasNoneWithoutTheProtocol) {
    const TinyCompositor compositor(false);
    EXPECT_EQ(source_.idleTime(), std::nullopt);
}

} // namespace
} // namespace orvello
