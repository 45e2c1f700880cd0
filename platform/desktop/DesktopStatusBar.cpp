#include "platform/desktop/DesktopStatusBar.h"

#include "platform/desktop/linux/Tray.h"
#include "platform/desktop/linux/TrayItem.h"

namespace orvello {

DesktopStatusBar::DesktopStatusBar()
    : tray_(std::make_unique<Tray>(TrayBus::sessionAddress())) {}

DesktopStatusBar::~DesktopStatusBar() = default;

std::unique_ptr<StatusItem> DesktopStatusBar::makeStatusItem() {
    return std::make_unique<TrayItem>(*tray_, images_);
}

bool DesktopStatusBar::hasTray() const {
    tray_->settle();
    return tray_->kind() != TrayKind::None;
}

} // namespace orvello
