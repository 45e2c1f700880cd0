#pragma once

#include "platform/StatusItem.h"

#include <string>
#include <vector>

namespace orvello {
class MenuItem;
}

namespace orvello::headless {

class VirtualTray;

class VirtualStatusItem : public StatusItem {
  public:
    explicit VirtualStatusItem(VirtualTray& tray);
    ~VirtualStatusItem() override;
    VirtualStatusItem(const VirtualStatusItem&) = delete;
    VirtualStatusItem& operator=(const VirtualStatusItem&) = delete;

    void setImage(std::string_view name) override { image_ = name; }
    void setAlternateImage(std::string_view name) override { alternateImage_ = name; }
    void setMenu(Menu& menu) override { menu_ = &menu; }

    const std::string& image() const { return image_; }
    const std::string& alternateImage() const { return alternateImage_; }
    Menu* menu() const { return menu_; }

  private:
    VirtualTray& tray_;
    std::string image_;
    std::string alternateImage_;
    Menu* menu_ = nullptr;
};

/// A tray that shows any image by its name and can be taken away.
class VirtualTray : public StatusBar {
  public:
    std::unique_ptr<StatusItem> makeStatusItem() override;
    bool hasTray() const override { return present_; }

    void setPresent(bool present) { present_ = present; }
    /// The program's item, the latest if there are several; null for none.
    VirtualStatusItem* item() const { return items_.empty() ? nullptr : items_.back(); }
    /// The image that is to be seen: the alternate one while the menu is open, none without a tray.
    std::string shownImage() const;
    /// The menu that a click on the item opens; null without tray, item or menu.
    Menu* menu() const;
    /// The entry with that title that the user could choose from the menu; null for none.
    MenuItem* choosableItem(std::string_view title) const;

  private:
    friend class VirtualStatusItem;

    std::vector<VirtualStatusItem*> items_;
    bool present_ = true;
};

} // namespace orvello::headless
