#include "tests/desktop/tray/FakeXEmbedTray.h"

#include <cstdlib>
#include <cstring>

namespace orvello {

FakeXEmbedTray::FakeXEmbedTray()
    : connection_(xcb_connect(nullptr, nullptr))
    , window_(xcb_generate_id(connection_))
    , opcode_(atom("_NET_SYSTEM_TRAY_OPCODE")) {
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 64, 32, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection_, window_);
    const auto selection = atom("_NET_SYSTEM_TRAY_S0");
    xcb_set_selection_owner(connection_, window_, selection, XCB_CURRENT_TIME);
    xcb_client_message_event_t announcement{};
    announcement.response_type = XCB_CLIENT_MESSAGE;
    announcement.format = 32;
    announcement.window = screen->root;
    announcement.type = atom("MANAGER");
    announcement.data.data32[1] = selection;
    announcement.data.data32[2] = window_;
    xcb_send_event(connection_, 0, screen->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&announcement));
    xcb_flush(connection_);
    readable_ =
        std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_), QSocketNotifier::Read);
    connect(readable_.get(), &QSocketNotifier::activated, this, &FakeXEmbedTray::readEvents);
}

FakeXEmbedTray::~FakeXEmbedTray() {
    readable_.reset();
    xcb_disconnect(connection_);
}

xcb_atom_t FakeXEmbedTray::atom(const char* name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    auto* reply = xcb_intern_atom_reply(connection_, cookie, nullptr);
    const auto atom = reply->atom;
    std::free(reply);
    return atom;
}

void FakeXEmbedTray::readEvents() {
    while (auto* event = xcb_poll_for_event(connection_)) {
        const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event);
        const auto* destroyed = reinterpret_cast<const xcb_destroy_notify_event_t*>(event);
        const auto* moved = reinterpret_cast<const xcb_reparent_notify_event_t*>(event);
        const int type = event->response_type & 0x7f;
        if (type == XCB_CLIENT_MESSAGE && message->type == opcode_ && message->data.data32[1] == 0) {
            const auto icon = message->data.data32[2];
            const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
            xcb_change_window_attributes(connection_, icon, XCB_CW_EVENT_MASK, &events);
            xcb_reparent_window(connection_, icon, window_, 0, 0);
            xcb_map_window(connection_, icon);
        } else if (type == XCB_REPARENT_NOTIFY && moved->parent == window_) {
            docked_.insert(moved->window);
        } else if (type == XCB_SELECTION_CLEAR) {
            xcb_destroy_window(connection_, window_);
        } else if (type == XCB_DESTROY_NOTIFY) {
            docked_.erase(destroyed->window);
        }
        std::free(event);
    }
    xcb_flush(connection_);
}

} // namespace orvello
