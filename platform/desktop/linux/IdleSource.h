#pragma once

#include <chrono>
#include <optional>

namespace orvello {

/// One way in which a session may tell how long the user has touched neither keyboard nor pointer. Making one
/// costs nothing; it looks for its service when it is asked.
class IdleSource {
  public:
    virtual ~IdleSource() = default;
    /// What the log calls it.
    virtual const char* name() const = 0;
    /// The time since the last input; none when the session does not tell. Waits half a second at most.
    virtual std::optional<std::chrono::nanoseconds> idleTime() = 0;
};

} // namespace orvello
