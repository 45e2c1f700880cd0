#include "platform/desktop/linux/X11IdleSource.h"

#include <QGuiApplication>

#include <xcb/screensaver.h>

#include <cstdlib>
#include <memory>

namespace orvello {

std::optional<std::chrono::nanoseconds> X11IdleSource::idleTime() {
    const auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    auto* connection = x11 ? x11->connection() : nullptr;
    if (!connection)
        return std::nullopt;
    const auto* extension = xcb_get_extension_data(connection, &xcb_screensaver_id);
    if (!extension || !extension->present)
        return std::nullopt;
    // The input of a screen is that of its server: any root window does.
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto request = xcb_screensaver_query_info(connection, root);
    const std::unique_ptr<xcb_screensaver_query_info_reply_t, decltype(&std::free)> reply(
        xcb_screensaver_query_info_reply(connection, request, nullptr), std::free);
    if (!reply)
        return std::nullopt;
    return std::chrono::milliseconds(reply->ms_since_user_input);
}

} // namespace orvello
