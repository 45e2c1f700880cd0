#pragma once

#include "platform/Clock.h"

namespace orvello::bench {

/// A clock that always shows the same minute of 2024.
struct FixedClock : Clock {
    Date now() const override {
        using namespace std::chrono_literals;
        return std::chrono::sys_days(2024y / std::chrono::March / 5) + 17h + 4min;
    }
};

} // namespace orvello::bench
