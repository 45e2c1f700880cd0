#include "statistics/CopyStatistics.h"

#include "platform/Integer.h"

namespace orvello {

CopySample takeCopySample(std::int64_t count, std::int64_t cache, std::int64_t banked) {
    if (count >= cache)
        return {.cache = count, .banked = std::nullopt};
    return {.cache = count, .banked = wrappingAdd(banked, cache)};
}

ClosedBackup closeBackup(std::int64_t cache, std::int64_t banked, std::int64_t total) {
    const auto last = wrappingAdd(banked, cache);
    return {.last = last, .total = wrappingAdd(total, last)};
}

} // namespace orvello
