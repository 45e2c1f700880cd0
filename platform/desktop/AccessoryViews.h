#pragma once

#include <functional>
#include <memory>
#include <string_view>

class QWidget;

namespace orvello {

/// The view resource of that name, shown beneath an alert's texts; null when there is none. The action is
/// that of the view's button; a view shows its button only with an action.
std::unique_ptr<QWidget> makeAccessoryView(std::string_view name, const std::function<void()>& action);

} // namespace orvello
