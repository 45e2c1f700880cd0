#pragma once

#include "platform/desktop/DesktopImages.h"
#include "platform/desktop/linux/DBusMenuTypes.h"
#include "tests/desktop/tray/FakeHost.h"

#include <optional>
#include <string>

namespace orvello {

/// The user in front of a tray on the session bus with one status item.
class StatusItemUser {
  public:
    StatusItemUser();

    void showTray();
    void hideTray();
    bool openMenu();
    void closeMenu();
    /// Chooses the entry, from the menu opened for that if need be; false when none with that title can be
    /// chosen.
    bool choose(const std::string& title);
    /// The name of the image that the tray shows; empty for none, and none for an image that has no name.
    std::optional<std::string> shownImage();

    /// Waits for the item, which has to notice the tray first; false without a tray.
    bool findItem();

  private:
    void tell(int entry, const QString& event);

    FakeHost host_;
    DesktopImages images_;
    bool open_ = false;
    qsizetype earlier_ = 0; ///< registrations with trays that are gone
};

} // namespace orvello
