#include "platform/icu/IcuCalendar.h"

#include "platform/icu/TimeZone.h"

#include <chrono>

namespace orvello {

namespace {

using std::chrono::days;
using std::chrono::hours;

/// Somewhat more than 32000 years, in days.
constexpr std::int64_t farthestDay = 11'690'000;

} // namespace

LocalTime IcuCalendar::localTime(Date date) const {
    const auto local = localDate(zone_, date);
    const auto day = std::chrono::floor<days>(local);
    const std::chrono::year_month_day civil(day);
    const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::seconds>(local - day));
    return {static_cast<int>(civil.year()),
            static_cast<int>(static_cast<unsigned>(civil.month())),
            static_cast<int>(static_cast<unsigned>(civil.day())),
            static_cast<int>(time.hours().count()),
            static_cast<int>(time.minutes().count()),
            static_cast<int>(time.seconds().count())};
}

std::vector<Date> IcuCalendar::instantsAtHour(Date reference, int dayOffset, std::int64_t hour) const {
    if (hour < 0 || hour > 23)
        return {};
    const auto today = std::chrono::floor<days>(localDate(zone_, reference));
    const std::int64_t day = std::int64_t{today.time_since_epoch().count()} + dayOffset;
    if (day < -farthestDay || day > farthestDay)
        return {};
    return instantsAt(zone_, LocalDate(days(day)) + hours(hour));
}

} // namespace orvello
