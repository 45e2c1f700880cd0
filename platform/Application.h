#pragma once

namespace orvello {

/// The running program as the desktop sees it.
class Application {
  public:
    virtual ~Application() = default;
    /// Brings the program's windows to the front, over other programs.
    virtual void activateIgnoringOtherApps() = 0;
    /// Ends the program with the settings saved. On a desktop the current event is still finished, except
    /// inside a modal alert, where the program ends at once: an alert that nobody answered has no answer.
    virtual void terminate() = 0;
};

} // namespace orvello
