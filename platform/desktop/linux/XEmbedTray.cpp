#include "platform/desktop/linux/XEmbedTray.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

namespace orvello {

namespace {

template <class Reply> using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

template <class Reply> ReplyPointer<Reply> owned(Reply* reply) {
    return {reply, &std::free};
}

xcb_atom_t atom(xcb_connection_t* connection, const std::string& name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_NONE);
}

int screenNumber() {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen))
        std::free(host);
    return screen;
}

} // namespace

XEmbedTray::XEmbedTray() {
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11)
        return;
    connection_ = x11->connection();
    selection_ = atom(connection_, "_NET_SYSTEM_TRAY_S" + std::to_string(screenNumber()));
    manager_ = atom(connection_, "MANAGER");
    // A new owner sends MANAGER to the root window, whose structure events Qt has selected on this
    // connection.
    qGuiApp->installNativeEventFilter(this);
    adoptOwner();
}

XEmbedTray::~XEmbedTray() {
    if (qGuiApp)
        qGuiApp->removeNativeEventFilter(this);
}

bool XEmbedTray::nativeEventFilter(const QByteArray& /*eventType*/, void* message, qintptr* /*result*/) {
    // Acted upon later, after Qt, which follows the same events for its own icons.
    switch (static_cast<const xcb_generic_event_t*>(message)->response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE: {
        const auto* client = static_cast<const xcb_client_message_event_t*>(message);
        if (client->type == manager_ && client->data.data32[1] == selection_)
            QMetaObject::invokeMethod(this, &XEmbedTray::ownerAnnounced, Qt::QueuedConnection);
        break;
    }
    case XCB_DESTROY_NOTIFY:
        if (static_cast<const xcb_destroy_notify_event_t*>(message)->window == owner_)
            QMetaObject::invokeMethod(this, &XEmbedTray::ownerDestroyed, Qt::QueuedConnection);
        break;
    default:
        break;
    }
    return false;
}

void XEmbedTray::ownerAnnounced() {
    if (owner_ == XCB_NONE)
        adoptOwner();
    else if (selectionOwner() != owner_)
        setPresent(false); // Qt docks icons in the old owner until that is gone
}

void XEmbedTray::ownerDestroyed() {
    owner_ = XCB_NONE;
    setPresent(false);
    adoptOwner();
}

void XEmbedTray::adoptOwner() {
    // Between the answer and the selection of its events an owner may vanish unnoticed, so it is asked for
    // again.
    for (auto owner = selectionOwner(); owner != owner_; owner = selectionOwner()) {
        owner_ = owner;
        const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        if (owner_ != XCB_NONE)
            xcb_change_window_attributes(connection_, owner_, XCB_CW_EVENT_MASK, &events);
    }
    setPresent(owner_ != XCB_NONE);
}

xcb_window_t XEmbedTray::selectionOwner() const {
    const auto cookie = xcb_get_selection_owner(connection_, selection_);
    const auto reply = owned(xcb_get_selection_owner_reply(connection_, cookie, nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_NONE);
}

void XEmbedTray::setPresent(bool present) {
    if (std::exchange(present_, present) != present)
        Q_EMIT changed();
}

} // namespace orvello
