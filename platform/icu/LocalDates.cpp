#include "platform/icu/TimeZone.h"

#include <algorithm>

namespace orvello {

namespace {

using std::chrono::sys_days;
using namespace std::chrono_literals;

constexpr Date earliest = sys_days(std::chrono::year(-32000) / 1 / 1);
constexpr Date latest = sys_days(std::chrono::year(32000) / 1 / 1);

/// More than local time was ever ahead of UTC or behind it.
constexpr auto largestOffset = 16h;

} // namespace

LocalDate localDate(const TimeZone& zone, Date date) {
    const Date clamped = std::clamp(date, earliest, latest);
    return LocalDate((clamped + zone.offsetAt(clamped)).time_since_epoch());
}

std::vector<Date> instantsAt(const TimeZone& zone, LocalDate local) {
    const Date utc = std::clamp(Date(local.time_since_epoch()), earliest, latest);
    const auto before = zone.offsetAt(utc - largestOffset);
    const auto after = zone.offsetAt(utc + largestOffset);
    if (before == after)
        return {utc - before};

    // The clock is set once in between; the last second of the old offset and the first of the new one close
    // in on it.
    auto old = std::chrono::floor<std::chrono::seconds>(utc - largestOffset);
    auto change = std::chrono::ceil<std::chrono::seconds>(utc + largestOffset);
    while (change - old > std::chrono::seconds(1)) {
        const auto middle = old + (change - old) / 2;
        (zone.offsetAt(middle) == before ? old : change) = middle;
    }
    std::vector<Date> instants;
    if (utc - before < change)
        instants.push_back(utc - before);
    if (utc - after >= change)
        instants.push_back(utc - after);
    if (instants.empty())
        instants.emplace_back(change);
    return instants;
}

} // namespace orvello
