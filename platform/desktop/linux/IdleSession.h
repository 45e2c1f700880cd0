#pragma once

#include "platform/desktop/linux/IdleSource.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace orvello {

class Log;

/// Whatever idle source the session has: the first of several that answers.
class IdleSession {
  public:
    /// With the sources in the order of preference.
    IdleSession(Log& log, std::vector<std::unique_ptr<IdleSource>> sources);

    /// Nanoseconds since the last input, or none. Which source told it is logged whenever that is another
    /// one.
    std::optional<std::int64_t> idleTime();

  private:
    void report(const char* source);

    Log& log_;
    std::vector<std::unique_ptr<IdleSource>> sources_;
    const char* reported_ = nullptr; ///< what the log last named
};

/// The sources that this session may have. On Wayland an X server knows only of the input to its own windows,
/// so that it is none of them there.
std::vector<std::unique_ptr<IdleSource>> sessionIdleSources();

} // namespace orvello
