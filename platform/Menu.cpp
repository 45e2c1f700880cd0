#include "platform/Menu.h"

#include "platform/RunLoop.h"

#include <utility>

namespace orvello {

MenuItem::MenuItem(Menu& menu, std::string title, bool separator)
    : menu_(menu)
    , title_(std::move(title))
    , separator_(separator) {}

template <class Value> void MenuItem::change(Value& property, Value value) {
    if (property == value)
        return;
    property = std::move(value);
    menu_.changed(*this);
}

void MenuItem::setTitle(std::string_view title) {
    change(title_, std::string(title));
}
void MenuItem::setHidden(bool hidden) {
    change(hidden_, hidden);
}
void MenuItem::setEnabled(bool enabled) {
    change(enabledFlag_, enabled);
}
void MenuItem::setValidated(bool validated) {
    change(validated_, validated);
}
void MenuItem::setChecked(bool checked) {
    change(checked_, checked);
}

void MenuItem::setAction(std::function<void()> action) {
    action_ = std::move(action);
}

Menu::~Menu() {
    if (open_)
        runLoop_.endTracking();
}

MenuItem& Menu::addItem(std::string title) {
    return *items_.emplace_back(std::make_unique<MenuItem>(*this, std::move(title), false));
}

MenuItem& Menu::addSeparator() {
    return *items_.emplace_back(std::make_unique<MenuItem>(*this, std::string(), true));
}

void Menu::open() {
    if (!open_) {
        open_ = true;
        runLoop_.beginTracking();
        if (delegate_)
            delegate_->menuWillOpen(*this);
    }
    validate();
}

void Menu::close() {
    if (!open_)
        return;
    open_ = false;
    if (delegate_)
        delegate_->menuDidClose(*this);
    runLoop_.endTracking();
}

void Menu::choose(MenuItem& item) {
    close();
    if (item.isEnabled() && !item.hidden_ && item.action_)
        item.action_();
}

void Menu::validate() {
    if (!delegate_)
        return;
    for (const auto& item : items_)
        if (item->action_)
            item->setValidated(delegate_->validateMenuItem(*item));
}

void Menu::changed(MenuItem& item) {
    for (auto* observer : observers_)
        observer->menuItemChanged(item);
}

} // namespace orvello
