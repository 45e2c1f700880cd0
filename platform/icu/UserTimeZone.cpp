#include "platform/icu/TimeZone.h"

#include <ctime>

namespace orvello {

std::chrono::seconds UserTimeZone::offsetAt(Date date) const {
    // localtime_r alone would keep the zone that it found first.
    tzset();
    const std::time_t time = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
    std::tm local{};
    return std::chrono::seconds(localtime_r(&time, &local) ? local.tm_gmtoff : 0);
}

} // namespace orvello
