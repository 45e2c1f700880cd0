#pragma once

#include <cstdint>

namespace orvello {

class IORegistry;

/// What stands for an idle time that could not be read.
inline constexpr std::int64_t unknownIdleTime = -1;

/// Nanoseconds since the last input in units of 2^30 ns (1.073741824 s), the fraction dropped.
constexpr std::int64_t scaledIdleTime(std::int64_t nanoseconds) {
    return nanoseconds >> 30;
}

/// How long the user has not touched keyboard, mouse or trackpad, scaled by scaledIdleTime; unknownIdleTime
/// on every failure. Asks the first "IOHIDSystem" service only.
std::int64_t probeIdleTime(IORegistry& registry);

} // namespace orvello
