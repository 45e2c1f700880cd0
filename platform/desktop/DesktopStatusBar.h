#pragma once

#include "platform/StatusItem.h"
#include "platform/desktop/DesktopImages.h"

#include <memory>

namespace orvello {

class Tray;

/// The tray of the desktop session. Needs the QApplication and ends before it; its items end before it does.
class DesktopStatusBar final : public StatusBar {
  public:
    DesktopStatusBar();
    ~DesktopStatusBar() override;
    DesktopStatusBar(const DesktopStatusBar&) = delete;
    DesktopStatusBar& operator=(const DesktopStatusBar&) = delete;

    /// One item at a time can be shown.
    std::unique_ptr<StatusItem> makeStatusItem() override;
    bool hasTray() const override;

  private:
    DesktopImages images_;
    std::unique_ptr<Tray> tray_;
};

} // namespace orvello
