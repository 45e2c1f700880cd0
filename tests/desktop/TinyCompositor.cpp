#include "tests/desktop/TinyCompositor.h"

#include "ext-idle-notify-v1-server-protocol.h"

#include <wayland-server.h>

#include <array>
#include <atomic>
#include <unistd.h>
#include <vector>

namespace orvello {

struct TinyCompositor::State {
    wl_display* display = nullptr;
    std::vector<wl_resource*> notifications;
    std::atomic<std::uint32_t> timeout = 0;
    int commands = -1;
    wl_event_source* commandSource = nullptr;

    static void destroyResource(wl_client* /*client*/, wl_resource* resource) {
        wl_resource_destroy(resource);
    }

    static void forget(wl_resource* notification) {
        auto* state = static_cast<State*>(wl_resource_get_user_data(notification));
        std::erase(state->notifications, notification);
    }

    static void getNotification(wl_client* client, wl_resource* notifier, std::uint32_t id,
                                std::uint32_t timeout, wl_resource* /*seat*/) {
        static constexpr struct ext_idle_notification_v1_interface requests { destroyResource };
        auto* state = static_cast<State*>(wl_resource_get_user_data(notifier));
        auto* notification = wl_resource_create(client, &ext_idle_notification_v1_interface, 1, id);
        wl_resource_set_implementation(notification, &requests, state, forget);
        state->notifications.push_back(notification);
        state->timeout = timeout;
    }

    static void bindNotifier(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        static constexpr struct ext_idle_notifier_v1_interface requests { destroyResource, getNotification };
        auto* notifier =
            wl_resource_create(client, &ext_idle_notifier_v1_interface, static_cast<int>(version), id);
        wl_resource_set_implementation(notifier, &requests, data, nullptr);
    }

    static void bindSeat(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        auto* seat = wl_resource_create(client, &wl_seat_interface, static_cast<int>(version), id);
        wl_resource_set_implementation(seat, nullptr, data, nullptr);
        wl_seat_send_capabilities(seat, WL_SEAT_CAPABILITY_KEYBOARD);
    }

    static int takeCommand(int descriptor, std::uint32_t /*mask*/, void* data) {
        auto* state = static_cast<State*>(data);
        char command = 'q';
        if (read(descriptor, &command, 1) != 1 || command == 'q')
            wl_display_terminate(state->display);
        for (auto* notification : state->notifications)
            if (command == 'i')
                ext_idle_notification_v1_send_idled(notification);
            else if (command == 'r')
                ext_idle_notification_v1_send_resumed(notification);
        return 0;
    }
};

TinyCompositor::TinyCompositor(const std::string& name, IdleNotify idleNotify)
    : state_(std::make_unique<State>()) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) == 0) {
        state_->commands = ends[0];
        commands_ = ends[1];
    }
    state_->display = wl_display_create();
    wl_global_create(state_->display, &wl_seat_interface, 1, state_.get(), State::bindSeat);
    if (idleNotify == IdleNotify::Offered)
        wl_global_create(state_->display, &ext_idle_notifier_v1_interface, 1, state_.get(),
                         State::bindNotifier);
    state_->commandSource = wl_event_loop_add_fd(wl_display_get_event_loop(state_->display), state_->commands,
                                                 WL_EVENT_READABLE, State::takeCommand, state_.get());
    wl_display_add_socket(state_->display, name.c_str());
    thread_ = std::thread([display = state_->display] { wl_display_run(display); });
}

TinyCompositor::~TinyCompositor() {
    command('q');
    thread_.join();
    wl_event_source_remove(state_->commandSource);
    wl_display_destroy_clients(state_->display);
    wl_display_destroy(state_->display);
    close(state_->commands);
    close(commands_);
}

void TinyCompositor::setIdle(bool idle) {
    command(idle ? 'i' : 'r');
}

std::uint32_t TinyCompositor::timeout() {
    return state_->timeout;
}

void TinyCompositor::command(char command) {
    [[maybe_unused]] const auto written = write(commands_, &command, 1);
}

} // namespace orvello
