#include "platform/desktop/linux/DesktopDisplay.h"

#include <QDir>
#include <QLibraryInfo>

#include <fmt/format.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace orvello {

namespace {

/// The variable's value; empty when it is not set.
std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

bool x11Answers() {
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
        xcb_connect(nullptr, nullptr), xcb_disconnect);
    return xcb_connection_has_error(connection.get()) == 0;
}

bool hasWaylandPlugin() {
    const QDir platforms(QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms"));
    return !platforms.entryList({QStringLiteral("libqwayland*.so")}, QDir::Files).isEmpty();
}

} // namespace

std::string missingDisplay() {
    if (!environment("QT_QPA_PLATFORM").empty())
        return {};
    const auto x11 = environment("DISPLAY");
    const auto wayland = environment("WAYLAND_DISPLAY");
    if (!x11.empty() && x11Answers())
        return {};
    if (!wayland.empty() && hasWaylandPlugin())
        return {};
    if (!x11.empty())
        return fmt::format("The display {} does not answer.", x11);
    if (!wayland.empty())
        return "Qt's Wayland support is not installed, and there is no X11 display.";
    return "There is no display: neither WAYLAND_DISPLAY nor DISPLAY is set.";
}

} // namespace orvello
