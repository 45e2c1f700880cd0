#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvello {

/// A control of a window: a plain value that the logic sets and the user changes. A back end draws it and is
/// told of changes; without one it works just as well. All texts are plain text.
class Control {
  public:
    Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    /// The one view that shows this control; called after every change, whoever made it.
    void setView(std::function<void()> changed) { changed_ = std::move(changed); }

  protected:
    ~Control() = default;
    template <class Value> void change(Value& property, Value value) {
        if (property == value)
            return;
        property = std::move(value);
        changed();
    }
    void changed() const {
        if (changed_)
            changed_();
    }

  private:
    std::function<void()> changed_;
};

class TextField : public Control {
  public:
    const std::string& stringValue() const { return stringValue_; }
    void setStringValue(std::string_view value) { change(stringValue_, std::string(value)); }

  private:
    std::string stringValue_;
};

/// A titled frame around other controls.
class Box : public Control {
  public:
    const std::string& title() const { return title_; }
    void setTitle(std::string_view title) { change(title_, std::string(title)); }

  private:
    std::string title_;
};

class ImageView : public Control {
  public:
    /// The name of an image among the program's resources; empty for none.
    const std::string& image() const { return image_; }
    void setImage(std::string_view name) { change(image_, std::string(name)); }

  private:
    std::string image_;
};

/// A push button.
class Button : public Control {
  public:
    void setAction(std::function<void()> action) { action_ = std::move(action); }
    /// The user pressed it.
    void click() const {
        if (action_)
            action_();
    }

  private:
    std::function<void()> action_;
};

class CheckBox : public Control {
  public:
    bool isOn() const { return on_; }
    void setOn(bool on) { change(on_, on); }
    void setAction(std::function<void()> action) { action_ = std::move(action); }
    /// The user switched it: takes the state, then runs the action.
    void userSet(bool on) {
        setOn(on);
        if (action_)
            action_();
    }

  private:
    std::function<void()> action_;
    bool on_ = false;
};

/// A button that opens a list of items, one of which may be selected.
class PopUpButton : public Control {
  public:
    struct Item {
        std::string title;
        std::int64_t tag = 0; ///< what a choice of the item stores
    };

    const std::vector<Item>& items() const { return items_; }
    void addItem(std::string title, std::int64_t tag) {
        items_.push_back({std::move(title), tag});
        changed();
    }

    std::optional<std::size_t> selectedIndex() const { return selected_; }
    std::optional<std::int64_t> selectedTag() const {
        return selected_ ? std::optional(items_.at(*selected_).tag) : std::nullopt;
    }
    /// Selects the first item with that tag; a tag that no item has leaves the button without a selection.
    void selectItemWithTag(std::int64_t tag) {
        const auto found =
            std::find_if(items_.begin(), items_.end(), [&](const Item& item) { return item.tag == tag; });
        change(selected_, found == items_.end()
                              ? std::nullopt
                              : std::optional(static_cast<std::size_t>(found - items_.begin())));
    }

    void setAction(std::function<void()> action) { action_ = std::move(action); }
    /// The user chose the item at an index: selects it, then runs the action.
    void userSelect(std::size_t index) {
        if (index >= items_.size())
            return;
        change(selected_, std::optional(index));
        if (action_)
            action_();
    }

  private:
    std::vector<Item> items_;
    std::optional<std::size_t> selected_;
    std::function<void()> action_;
};

} // namespace orvello
