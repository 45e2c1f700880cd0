#include "platform/headless/VirtualTray.h"

#include "platform/Menu.h"

namespace orvello::headless {

VirtualStatusItem::VirtualStatusItem(VirtualTray& tray)
    : tray_(tray) {
    tray_.items_.push_back(this);
}

VirtualStatusItem::~VirtualStatusItem() {
    std::erase(tray_.items_, this);
}

std::unique_ptr<StatusItem> VirtualTray::makeStatusItem() {
    return std::make_unique<VirtualStatusItem>(*this);
}

std::string VirtualTray::shownImage() const {
    if (!present_ || !item())
        return {};
    const auto* shown = menu();
    return shown && shown->isOpen() ? item()->alternateImage() : item()->image();
}

Menu* VirtualTray::menu() const {
    return present_ && item() ? item()->menu() : nullptr;
}

MenuItem* VirtualTray::choosableItem(std::string_view title) const {
    const auto* shown = menu();
    if (!shown)
        return nullptr;
    for (const auto& entry : shown->items())
        if (entry->title() == title && entry->isEnabled() && !entry->isHidden() && !entry->isSeparator())
            return entry.get();
    return nullptr;
}

} // namespace orvello::headless
