#pragma once

#include <memory>
#include <string_view>

namespace orvello {

class Menu;

/// The program's icon in the tray. It is shown wherever and whenever the session has a tray: the tray may
/// come after the program, go away and come back.
class StatusItem {
  public:
    virtual ~StatusItem() = default;
    /// Images are named; a name that no image has leaves the icon empty.
    virtual void setImage(std::string_view name) = 0;
    /// Shown while the item is highlighted, on trays that highlight.
    virtual void setAlternateImage(std::string_view name) = 0;
    /// What a click on the icon opens. The menu must outlive the item.
    virtual void setMenu(Menu& menu) = 0;
};

class StatusBar {
  public:
    virtual ~StatusBar() = default;
    /// A new item of the bar's own square size.
    virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
    /// Whether the session has a tray that shows items at the moment.
    virtual bool hasTray() const = 0;
};

} // namespace orvello
