#pragma once

#include "platform/Alert.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <string_view>

namespace orvello {

class Log;
class RunLoop;

/// Shows alerts as modal dialogs.
class DesktopAlertPresenter : public AlertPresenter {
  public:
    /// Makes the view resource of a name, with the action of its button; null when there is none.
    using ViewFactory =
        std::function<std::unique_ptr<QWidget>(std::string_view name, const std::function<void()>& action)>;

    DesktopAlertPresenter(RunLoop& runLoop, Log& log, ViewFactory views)
        : runLoop_(runLoop)
        , log_(log)
        , views_(std::move(views)) {}

    AlertResponse runModal(const Alert& alert) override;
    /// Whether an alert waits for its answer.
    bool isPresenting() const { return depth_ > 0; }

  private:
    RunLoop& runLoop_;
    Log& log_;
    ViewFactory views_;
    int depth_ = 0;
};

} // namespace orvello
