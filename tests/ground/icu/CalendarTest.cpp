#include "platform/icu/IcuCalendar.h"
#include "platform/icu/TimeZone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace orvello {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr Date utc(int year, unsigned month, unsigned day) {
    return std::chrono::sys_days(std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day));
}

// Which backups start around changes of the clock, the simulated years show for all zones.
TEST(IcuCalendar, InstantsAtAnHourAreThoseAtWhichTheClockShowsIt) {
    constexpr auto far = std::numeric_limits<int>::max();
    struct Row {
        const char* name;
        const char* zone;
        Date reference;
        int dayOffset;
        std::int64_t hour;
        std::vector<Date> instants;
    };
    const auto* const berlin = "Europe/Berlin";
    const Row rows[] = {
        {"late in the evening", berlin, utc(2024, 7, 1) + 23h, 0, 0, {utc(2024, 7, 1) + 22h}},
        {"tomorrow across a short day", berlin, utc(2024, 3, 30) + 23h, 1, 0, {utc(2024, 3, 31) + 22h}},
        {"skipped hour", berlin, utc(2024, 3, 31), 0, 2, {utc(2024, 3, 31) + 1h}},
        {"repeated hour", berlin, utc(2024, 10, 27), 0, 2, {utc(2024, 10, 27), utc(2024, 10, 27) + 1h}},
        {"before the epoch", "UTC", utc(1969, 12, 31) + 23h, -1, 5, {utc(1969, 12, 30) + 5h}},
        {"unknown zone is UTC", "Mars/Olympus", utc(2024, 1, 1), 0, 5, {utc(2024, 1, 1) + 5h}},
        {"hour too large", berlin, utc(2024, 7, 1), 0, 24, {}},
        {"day beyond the calendar", berlin, utc(2024, 7, 1), far, 5, {}},
        {"day before the calendar", berlin, Date::min(), -far, 5, {}},
    };
    for (const auto& row : rows) {
        const NamedTimeZone zone(row.zone);
        EXPECT_EQ(IcuCalendar(zone).instantsAtHour(row.reference, row.dayOffset, row.hour), row.instants)
            << row.name;
    }
}

TEST(IcuCalendar, NamesLocalTimesInTheZoneInForce) {
    NamedTimeZone zone("Europe/Berlin");
    const IcuCalendar calendar(zone);
    const auto fields = [&](Date date) {
        const auto time = calendar.localTime(date);
        return std::vector{time.year, time.month, time.day, time.hour, time.minute, time.second};
    };
    EXPECT_THAT(fields(utc(2024, 2, 29) + 23h + 5min + 7s), ElementsAre(2024, 3, 1, 0, 5, 7));
    EXPECT_THAT(fields(Date(-1us)), ElementsAre(1970, 1, 1, 0, 59, 59));
    zone.setName("America/New_York");
    EXPECT_THAT(fields(utc(2024, 1, 1)), ElementsAre(2023, 12, 31, 19, 0, 0));
    EXPECT_THAT(fields(Date::max()), ElementsAre(31999, 12, 31, 19, 0, 0)) << "the last date that has a name";
}

} // namespace
} // namespace orvello
