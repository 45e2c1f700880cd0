#pragma once

#include "platform/Date.h"

namespace orvello {

/// The wall clock. It may be set back or forward at any moment.
class Clock {
  public:
    virtual ~Clock() = default;
    virtual Date now() const = 0;
};

} // namespace orvello
