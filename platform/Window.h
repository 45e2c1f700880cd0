#pragma once

namespace orvello {

struct PreferencesInterface;

/// A window of the program's interface. Closing it hides it; it can be ordered front again.
class Window {
  public:
    virtual ~Window() = default;
    /// Gives the window the controls to show; they must outlive it. Once, before it is first shown.
    virtual void connect(PreferencesInterface& controls) = 0;
    /// Shows the window if it is hidden, raises it, and gives it the keyboard.
    virtual void makeKeyAndOrderFront() = 0;
    virtual bool isVisible() const = 0;
};

} // namespace orvello
