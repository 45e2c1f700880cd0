#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvello {

class Menu;
class RunLoop;

/// One entry of a menu. Titles are plain text. Setting a property to the value it has tells nobody.
class MenuItem {
  public:
    MenuItem(Menu& menu, std::string title, bool separator);

    const std::string& title() const { return title_; }
    bool isHidden() const { return hidden_; }
    /// Whether the entry can be chosen: its own flag is set, and validation did not refuse.
    bool isEnabled() const { return enabledFlag_ && validated_; }
    bool enabledFlag() const { return enabledFlag_; }
    bool isChecked() const { return checked_; }
    bool isSeparator() const { return separator_; }

    void setTitle(std::string_view title);
    void setHidden(bool hidden);
    void setEnabled(bool enabled);
    /// The answer to validation, where it is known without being asked for.
    void setValidated(bool validated);
    void setChecked(bool checked);
    /// What choosing the entry does. An entry without an action informs: it is shown like any other, so that
    /// it can be read, and choosing it only closes the menu.
    void setAction(std::function<void()> action);

  private:
    friend class Menu;
    template <class Value> void change(Value& property, Value value);

    Menu& menu_;
    std::string title_;
    std::function<void()> action_;
    bool hidden_ = false;
    bool enabledFlag_ = true;
    bool validated_ = true;
    bool checked_ = false;
    bool separator_ = false;
};

/// Told when the menu opens and closes, and asked at each opening which entries may be chosen.
class MenuDelegate {
  public:
    virtual ~MenuDelegate() = default;
    virtual void menuWillOpen(Menu& menu) = 0;
    virtual void menuDidClose(Menu& menu) = 0;
    /// Asked for every entry that has an action; an entry that is refused cannot be chosen.
    virtual bool validateMenuItem(MenuItem& item) = 0;
};

/// A back end's view of a menu; told of every change so that it can draw it.
class MenuObserver {
  public:
    virtual ~MenuObserver() = default;
    virtual void menuItemChanged(MenuItem& item) = 0;
};

/// A menu with its entries and its open state, shared by all back ends. While it is open the run loop is
/// tracking. Hosts of menus on a bus report openings twice or forget to report a close, so every report may
/// be repeated: only the first of a kind has an effect.
class Menu {
  public:
    explicit Menu(RunLoop& runLoop)
        : runLoop_(runLoop) {}
    ~Menu();
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

    MenuItem& addItem(std::string title);
    MenuItem& addSeparator();
    const std::vector<std::unique_ptr<MenuItem>>& items() const { return items_; }

    void setDelegate(MenuDelegate* delegate) { delegate_ = delegate; }
    void addObserver(MenuObserver* observer) { observers_.push_back(observer); }
    void removeObserver(MenuObserver* observer) { std::erase(observers_, observer); }

    /// The menu is about to be shown: tells the delegate, then validates. A second call before close only
    /// validates again.
    void open();
    /// The menu was closed. Without an open menu nothing happens.
    void close();
    bool isOpen() const { return open_; }

    /// The user chose the entry: closes the menu, then runs the action, if the entry is enabled and visible.
    void choose(MenuItem& item);

  private:
    friend class MenuItem;
    void validate();
    void changed(MenuItem& item);

    RunLoop& runLoop_;
    std::vector<std::unique_ptr<MenuItem>> items_;
    std::vector<MenuObserver*> observers_;
    MenuDelegate* delegate_ = nullptr;
    bool open_ = false;
};

} // namespace orvello
