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
        {"tomorrow", berlin, utc(2024, 7, 1), 12h, 1, 0, {22h}},
        {"tomorrow across a short day", berlin, utc(2024, 3, 30), 23h, 1, 0, {46h}},
        {"days ago across the year", berlin, utc(2024, 1, 1), 12h, -2, 23, {-26h}},
        {"skipped hour", berlin, utc(2024, 3, 31), 0h, 0, 2, {1h}},
        {"hour behind the gap", berlin, utc(2024, 3, 31), 0h, 0, 3, {1h}},
        {"repeated hour", berlin, utc(2024, 10, 27), 12h, 0, 2, {0h, 1h}},
        {"hour behind the repetition", berlin, utc(2024, 10, 27), 12h, 0, 3, {2h}},
        {"repeated hour from tomorrow", berlin, utc(2024, 10, 28), 12h, -1, 2, {-24h, -23h}},
        {"half-hour gap", lordHowe, utc(2024, 10, 5), 18h, 0, 2, {15h + 30min}},
        {"half an hour back touches no full hour", lordHowe, utc(2024, 4, 6), 18h, 0, 2, {15h + 30min}},
        {"odd offset", "Asia/Kathmandu", utc(2024, 5, 5), 0h, 0, 9, {3h + 15min}},
        {"midnight skipped", saoPaulo, utc(2018, 11, 4), 12h, 0, 0, {3h}},
        {"hour before midnight repeated", saoPaulo, utc(2018, 2, 17), 12h, 0, 23, {25h, 26h}},
        {"midnight not repeated", saoPaulo, utc(2018, 2, 18), 12h, 0, 0, {3h}},
        {"midnight skipped in Beirut", "Asia/Beirut", utc(2022, 3, 26), 12h, 1, 0, {22h}},
        {"day skipped, morning", apia, utc(2011, 12, 30), 9h, 1, 0, {10h}},
        {"day skipped, evening", apia, utc(2011, 12, 30), 11h, -1, 23, {10h}},
        {"day behind the skipped day", apia, utc(2011, 12, 30), 9h, 2, 1, {11h}},
        {"before the epoch", "UTC", utc(1969, 12, 31), 23h, -1, 5, {-19h}},
        {"unknown zone is UTC", "Mars/Olympus", utc(2024, 1, 1), 0h, 0, 5, {5h}},
        {"hour off", berlin, utc(2024, 7, 1), 0h, 0, -1, {}},
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

TEST(IcuCalendar, FindsEveryHourOfAYearByItsLocalTime) {
    for (const char* name : {"Europe/Berlin", "Australia/Lord_Howe", "America/Sao_Paulo", "UTC"}) {
        const NamedTimeZone zone(name);
        const IcuCalendar calendar(zone);
        for (int hour = 0; hour < 365 * 24; ++hour) {
            const auto instants = calendar.instantsAtHour(utc(2018, 1, 1) + 12h, hour / 24, hour % 24);
            ASSERT_FALSE(instants.empty());
            for (const auto instant : instants) {
                const auto shown = calendar.localTime(instant);
                const auto before = calendar.localTime(instant - 1s);
                const bool onTheHour = shown.hour == hour % 24 && shown.minute == 0 && shown.second == 0;
                const bool behindAGap = before.hour < hour % 24 || (before.hour == 23 && hour % 24 == 0);
                ASSERT_TRUE(onTheHour || behindAGap) << name << " hour " << hour;
            }
        }
    }
}

} // namespace
} // namespace orvello
