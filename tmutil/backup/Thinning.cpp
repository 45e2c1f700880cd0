#include "tmutil/backup/Thinning.h"

#include <utility>

namespace orvello::tmutil {

namespace {

enum class Period { Hour, Day, Week };

/// Backups with equal spans compete.
using Span = std::pair<Period, std::int64_t>;

Span spanOf(Date time, Date now, std::chrono::minutes offset) {
    using std::chrono::days;
    constexpr days day(1);
    constexpr days month(30);
    constexpr days mondayShift(3); // 1970-01-01 was a Thursday
    const auto local = time + offset;
    const auto age = now - time;
    if (age <= day)
        return {Period::Hour, std::chrono::floor<std::chrono::hours>(local).time_since_epoch().count()};
    if (age <= month)
        return {Period::Day, std::chrono::floor<days>(local).time_since_epoch().count()};
    return {Period::Week,
            std::chrono::floor<std::chrono::weeks>(local + mondayShift).time_since_epoch().count()};
}

} // namespace

std::vector<std::size_t> backupsToDrop(const std::vector<Date>& times, Date now,
                                       std::chrono::minutes offset) {
    std::vector<std::size_t> dropped;
    for (std::size_t i = 0; i + 1 < times.size() && times[i + 1] <= now; ++i)
        if (spanOf(times[i], now, offset) == spanOf(times[i + 1], now, offset))
            dropped.push_back(i);
    return dropped;
}

} // namespace orvello::tmutil
