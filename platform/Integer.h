#pragma once

#include <cstdint>

namespace orvello {

/// Sums and differences of signed 64-bit integers that wrap around instead of overflowing: stored settings
/// and the tool's counts are not checked for their range.
inline std::int64_t wrappingAdd(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    (void)__builtin_add_overflow(a, b, &sum);
    return sum;
}

inline std::int64_t wrappingSubtract(std::int64_t a, std::int64_t b) {
    std::int64_t difference = 0;
    (void)__builtin_sub_overflow(a, b, &difference);
    return difference;
}

} // namespace orvello
