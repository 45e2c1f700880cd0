#include "platform/icu/IcuCalendar.h"
#include "platform/icu/TimeZone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace orvello {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using testing::ElementsAre;
using testing::IsEmpty;

struct HourCase {
    const char* name;
    const char* zone;
    Date reference;
    int dayOffset;
    std::int64_t hour;
    std::vector<Date> instants;
};

void PrintTo(const HourCase& row, std::ostream* out) {
    *out << row.name;
}

constexpr Date utc(int year, unsigned month, unsigned day, std::chrono::minutes time = 0min) {
    return sys_days(std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day)) + time;
}

class InstantsAtHour : public testing::TestWithParam<HourCase> {};

TEST_P(InstantsAtHour, AreThoseAtWhichTheClockShowsIt) {
    const auto& row = GetParam();
    const NamedTimeZone zone(row.zone);
    EXPECT_EQ(IcuCalendar(zone).instantsAtHour(row.reference, row.dayOffset, row.hour), row.instants);
}

constexpr auto farAway = std::numeric_limits<int>::max();

INSTANTIATE_TEST_SUITE_P(
    Zones, InstantsAtHour,
    testing::Values(
        HourCase{"Ordinary", "Europe/Berlin", utc(2024, 7, 1, 12h), 0, 14, {utc(2024, 7, 1, 12h)}},
        HourCase{
            "ReferenceLateInTheEvening", "Europe/Berlin", utc(2024, 7, 1, 23h), 0, 0, {utc(2024, 7, 1, 22h)}},
        HourCase{"Tomorrow", "Europe/Berlin", utc(2024, 7, 1, 12h), 1, 0, {utc(2024, 7, 1, 22h)}},
        HourCase{
            "TomorrowAcrossShortDay", "Europe/Berlin", utc(2024, 3, 30, 23h), 1, 0, {utc(2024, 3, 31, 22h)}},
        HourCase{
            "DaysAgoAcrossTheYear", "Europe/Berlin", utc(2024, 1, 1, 12h), -2, 23, {utc(2023, 12, 30, 22h)}},
        HourCase{"SkippedHour", "Europe/Berlin", utc(2024, 3, 31, 0h), 0, 2, {utc(2024, 3, 31, 1h)}},
        HourCase{"HourBehindTheGap", "Europe/Berlin", utc(2024, 3, 31, 0h), 0, 3, {utc(2024, 3, 31, 1h)}},
        HourCase{"RepeatedHour",
                 "Europe/Berlin",
                 utc(2024, 10, 27, 12h),
                 0,
                 2,
                 {utc(2024, 10, 27, 0h), utc(2024, 10, 27, 1h)}},
        HourCase{"HourBehindTheRepetition",
                 "Europe/Berlin",
                 utc(2024, 10, 27, 12h),
                 0,
                 3,
                 {utc(2024, 10, 27, 2h)}},
        HourCase{"RepeatedHourFromTomorrow",
                 "Europe/Berlin",
                 utc(2024, 10, 28, 12h),
                 -1,
                 2,
                 {utc(2024, 10, 27, 0h), utc(2024, 10, 27, 1h)}},
        HourCase{"HalfHourGap",
                 "Australia/Lord_Howe",
                 utc(2024, 10, 5, 18h),
                 0,
                 2,
                 {utc(2024, 10, 5, 15h + 30min)}},
        HourCase{"HalfHourSetBackTouchesNoFullHour",
                 "Australia/Lord_Howe",
                 utc(2024, 4, 6, 18h),
                 0,
                 2,
                 {utc(2024, 4, 6, 15h + 30min)}},
        HourCase{"OddOffset", "Asia/Kathmandu", utc(2024, 5, 5), 0, 9, {utc(2024, 5, 5, 3h + 15min)}},
        HourCase{"MidnightSkipped", "America/Sao_Paulo", utc(2018, 11, 4, 12h), 0, 0, {utc(2018, 11, 4, 3h)}},
        HourCase{"HourBeforeMidnightRepeated",
                 "America/Sao_Paulo",
                 utc(2018, 2, 17, 12h),
                 0,
                 23,
                 {utc(2018, 2, 18, 1h), utc(2018, 2, 18, 2h)}},
        HourCase{
            "MidnightNotRepeated", "America/Sao_Paulo", utc(2018, 2, 18, 12h), 0, 0, {utc(2018, 2, 18, 3h)}},
        HourCase{
            "MidnightSkippedInBeirut", "Asia/Beirut", utc(2022, 3, 26, 12h), 1, 0, {utc(2022, 3, 26, 22h)}},
        HourCase{"DaySkippedMorning", "Pacific/Apia", utc(2011, 12, 30, 9h), 1, 0, {utc(2011, 12, 30, 10h)}},
        HourCase{
            "DaySkippedEvening", "Pacific/Apia", utc(2011, 12, 30, 11h), -1, 23, {utc(2011, 12, 30, 10h)}},
        HourCase{
            "DayBehindSkippedDay", "Pacific/Apia", utc(2011, 12, 30, 9h), 2, 1, {utc(2011, 12, 30, 11h)}},
        HourCase{"BeforeTheEpoch", "UTC", utc(1969, 12, 31, 23h), -1, 5, {utc(1969, 12, 30, 5h)}},
        HourCase{"UnknownZoneIsUTC", "Mars/Olympus", utc(2024, 1, 1), 0, 5, {utc(2024, 1, 1, 5h)}},
        HourCase{"HourOff", "Europe/Berlin", utc(2024, 7, 1), 0, -1, {}},
        HourCase{"HourTooLarge", "Europe/Berlin", utc(2024, 7, 1), 0, 24, {}},
        HourCase{"DayBeyondTheCalendar", "Europe/Berlin", utc(2024, 7, 1), farAway, 5, {}},
        HourCase{"DayBeforeTheCalendar", "Europe/Berlin", Date::min(), -farAway, 5, {}}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(IcuCalendar, NamesLocalTimesInTheZoneInForce) {
    NamedTimeZone zone("Europe/Berlin");
    const IcuCalendar calendar(zone);
    const auto fields = [&](Date date) {
        const auto time = calendar.localTime(date);
        return std::vector{time.year, time.month, time.day, time.hour, time.minute, time.second};
    };
    EXPECT_THAT(fields(utc(2024, 2, 29, 23h + 5min) + 7s), ElementsAre(2024, 3, 1, 0, 5, 7));
    EXPECT_THAT(fields(Date(-1us)), ElementsAre(1970, 1, 1, 0, 59, 59));
    zone.setName("America/New_York");
    EXPECT_THAT(fields(utc(2024, 1, 1)), ElementsAre(2023, 12, 31, 19, 0, 0));
    EXPECT_THAT(fields(Date::max()), ElementsAre(31999, 12, 31, 19, 0, 0)) << "the last date that has a name";
}

TEST(IcuCalendar, FindsEveryHourOfAYearByItsLocalTime) {
    for (const char* name :
         {"Europe/Berlin", "Australia/Lord_Howe", "America/Sao_Paulo", "Asia/Beirut", "UTC"}) {
        const NamedTimeZone zone(name);
        const IcuCalendar calendar(zone);
        const Date start = utc(2018, 1, 1, 12h);
        for (int day = 0; day < 365; ++day)
            for (int hour = 0; hour < 24; ++hour) {
                const auto instants = calendar.instantsAtHour(start, day, hour);
                ASSERT_THAT(instants, testing::Not(IsEmpty()));
                for (const auto instant : instants) {
                    const auto shown = calendar.localTime(instant);
                    const auto before = calendar.localTime(instant - 1s);
                    const bool onTheHour = shown.hour == hour && shown.minute == 0 && shown.second == 0;
                    const bool behindAGap = before.hour < hour || (before.hour == 23 && hour == 0);
                    ASSERT_TRUE(onTheHour || behindAGap) << name << " day " << day << " hour " << hour;
                }
            }
    }
}

} // namespace
} // namespace orvello
