#pragma once

#include <chrono>

namespace orvello {

/// An absolute instant of the wall clock, in microseconds since 1970-01-01 00:00 UTC without leap seconds.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

/// Time since an arbitrary start that never runs backwards and stands still while the computer sleeps.
using Uptime = std::chrono::nanoseconds;

} // namespace orvello
