#pragma once

namespace orvello {

/// The program's entry among what the session starts at login.
class LoginItem {
  public:
    virtual ~LoginItem() = default;
    /// Makes or removes the entry. False when the platform refuses; then nothing has changed.
    virtual bool setEnabled(bool enabled) = 0;
};

} // namespace orvello
