#include "platform/headless/Session.h"

#include <utility>

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

void RecordedInstaller::install(const std::string& path, ToolInstallerDelegate& delegate) {
    if (delegate_)
        return;
    requests_.add(path);
    delegate_ = &delegate;
}

void RecordedInstaller::finish() {
    if (auto* delegate = std::exchange(delegate_, nullptr))
        delegate->downloadDidFinish();
}

void RecordedInstaller::fail(const InstallError& error) {
    if (auto* delegate = std::exchange(delegate_, nullptr))
        delegate->downloadDidFail(error);
}

} // namespace orvello::headless
