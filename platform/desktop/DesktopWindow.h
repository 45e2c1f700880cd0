#pragma once

#include "platform/Window.h"

#include <QPoint>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace orvello {

/// The preferences window. It is built when it is first shown, is as large as what it shows, and keeps its
/// place while it is hidden. Without controls it is empty.
class DesktopWindow : public Window {
  public:
    /// Makes what the window shows of its controls.
    using ContentFactory = std::function<std::unique_ptr<QWidget>(PreferencesInterface&)>;

    explicit DesktopWindow(ContentFactory content)
        : content_(std::move(content)) {}

    void connect(PreferencesInterface& controls) override { controls_ = &controls; }
    void makeKeyAndOrderFront() override;
    bool isVisible() const override { return widget_ && widget_->isVisible(); }

  private:
    void build();
    void showWhereItWas();

    ContentFactory content_;
    PreferencesInterface* controls_ = nullptr;
    std::unique_ptr<QWidget> widget_;
    std::optional<QPoint> place_; ///< where the frame stood when the window was last closed
};

} // namespace orvello
