#include "platform/headless/Session.h"

namespace orvello::headless {

bool DiskLoginItem::setEnabled(bool enabled) {
    requests_.add(enabled);
    if (refusing_)
        return false;
    if (enabled)
        disk_.loginItems.insert(name);
    else
        disk_.loginItems.erase(name);
    return true;
}

void VirtualWindow::makeKeyAndOrderFront() {
    visible_ = true;
    ++orderFrontCount_;
}

} // namespace orvello::headless
