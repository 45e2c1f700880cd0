#include "platform/icu/IcuCalendar.h"
#include "platform/icu/TimeZone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace orvello {
namespace {

using namespace std::chrono_literals;
using std::chrono::minutes;
using testing::ElementsAre;

constexpr Date utc(int year, unsigned month, unsigned day) {
    return std::chrono::sys_days(std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day));
}

TEST(IcuCalendar, InstantsAtAnHourAreThoseAtWhichTheClockShowsIt) {
    struct Row {
        const char* name;
        const char* zone;
        Date day; // in UTC, as the times of the reference and of the instants, which count from it
        minutes reference;
        int dayOffset;
        std::int64_t hour;
        std::vector<minutes> instants;
    };
    const auto* const berlin = "Europe/Berlin";
    const auto* const lordHowe = "Australia/Lord_Howe";
    const auto* const saoPaulo = "America/Sao_Paulo";
    const auto* const apia = "Pacific/Apia";
    constexpr auto far = std::numeric_limits<int>::max();
    const Row rows[] = {
        {"ordinary", berlin, utc(2024, 7, 1), 12h, 0, 14, {12h}},
        {"reference late in the evening", berlin, utc(2024, 7, 1), 23h, 0, 0, {22h}},
        {"tomorrow across a short day", berlin, utc(2024, 3, 30), 23h, 1, 0, {46h}},
        {"skipped hour", berlin, utc(2024, 3, 31), 0h, 0, 2, {1h}},
        {"repeated hour", berlin, utc(2024, 10, 27), 12h, 0, 2, {0h, 1h}},
        {"half-hour gap", lordHowe, utc(2024, 10, 5), 18h, 0, 2, {15h + 30min}},
        {"half an hour back touches no full hour", lordHowe, utc(2024, 4, 6), 18h, 0, 2, {15h + 30min}},
        {"midnight skipped", saoPaulo, utc(2018, 11, 4), 12h, 0, 0, {3h}},
        {"day skipped, morning", apia, utc(2011, 12, 30), 9h, 1, 0, {10h}},
        {"day behind the skipped day", apia, utc(2011, 12, 30), 9h, 2, 1, {11h}},
        {"before the epoch", "UTC", utc(1969, 12, 31), 23h, -1, 5, {-19h}},
        {"unknown zone is UTC", "Mars/Olympus", utc(2024, 1, 1), 0h, 0, 5, {5h}},
        {"hour too large", berlin, utc(2024, 7, 1), 0h, 0, 24, {}},
        {"day beyond the calendar", berlin, utc(2024, 7, 1), 0h, far, 5, {}},
        {"day before the calendar", berlin, Date::min(), 0h, -far, 5, {}},
    };
    for (const auto& row : rows) {
        const NamedTimeZone zone(row.zone);
        std::vector<Date> expected;
        for (const auto instant : row.instants)
            expected.push_back(row.day + instant);
        EXPECT_EQ(IcuCalendar(zone).instantsAtHour(row.day + row.reference, row.dayOffset, row.hour),
                  expected)
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
