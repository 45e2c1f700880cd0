#pragma once

#include <functional>
#include <string>

namespace orvello {

enum class AlertIcon { Standard, Application };

/// How an alert ended, with the numbers of the platform's legacy alerts. Escape and closing the window answer
/// like the alternate button, also where the alert has none.
enum class AlertResponse { Default = 1, Alternate = 0, Other = -1 };

/// A modal alert. All texts are plain text. An empty button title means that the alert lacks that button; the
/// default button answers Return.
struct Alert {
    std::string message;
    std::string informativeText;
    std::string defaultButton = "OK";
    std::string alternateButton;
    std::string otherButton;
    AlertIcon icon = AlertIcon::Standard;
    /// Name of the view resource shown beneath the texts; empty for none.
    std::string accessoryView;
    /// What the button in the accessory view does; a view shows its button only with an action.
    std::function<void()> accessoryAction;
};

class AlertPresenter {
  public:
    virtual ~AlertPresenter() = default;
    /// Shows the alert in front and waits for the answer in a nested loop, in which the run loop is tracking.
    /// Alerts nest: the one opened last is answered first.
    virtual AlertResponse runModal(const Alert& alert) = 0;
};

} // namespace orvello
