#pragma once

#include "platform/Clock.h"

namespace orvello {

/// The system's wall clock.
class DesktopClock : public Clock {
  public:
    Date now() const override {
        return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    }
};

} // namespace orvello
