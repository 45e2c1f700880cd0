#include "platform/desktop/linux/Tray.h"

namespace orvello {

Tray::Tray(const QString& busAddress)
    : bus_(busAddress)
    , hosts_(bus_) {
    connect(&hosts_, &StatusNotifierHosts::changed, this, &Tray::changed);
    connect(&xembed_, &XEmbedTray::changed, this, &Tray::changed);
}

TrayKind Tray::kind() const {
    switch (hosts_.state()) {
    case StatusNotifierHosts::State::Present:
        return TrayKind::StatusNotifier;
    case StatusNotifierHosts::State::Absent:
        return xembed_.isPresent() ? TrayKind::XEmbed : TrayKind::None;
    case StatusNotifierHosts::State::Unknown:
        break;
    }
    return TrayKind::None;
}

} // namespace orvello
