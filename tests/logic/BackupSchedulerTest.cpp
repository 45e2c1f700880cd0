#include "schedule/BackupScheduler.h"

#include "platform/icu/IcuCalendar.h"
#include "platform/icu/TimeZone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace orvello {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr Date midnight = sys_days{2026y / November / 22};
constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
constexpr auto most = std::numeric_limits<std::int64_t>::max();

/// Minutes since midnight, so that a text tells which minute it names.
std::string dateText(Date date) {
    return std::to_string(floor<minutes>(date - midnight).count());
}

TEST(BackupScheduler, CountdownAndIdleness) {
    struct Row {
        const char* name;
        ScheduleSettings settings; // countdown, idle minutes, word
        std::int64_t idle;         // as probed; 60 are a minute
        Trigger trigger;
        DynamicDecision expected; // start, stored countdown, minutes, only if idle
    };
    const auto none = std::nullopt;
    constexpr auto yes = Trigger::Yes;
    constexpr auto no = Trigger::No;
    const Row rows[] = {
        {"running countdown loses a minute", {60, 10, "and"}, 0, yes, {false, 59, 59, false}},
        {"without trigger nothing moves", {60, -1, "and"}, 0, no, {false, none, 60, false}},
        {"last minute of the countdown", {1, -1, "or"}, 0, yes, {false, 0, 0, false}},
        {"expired: starts and keeps 0", {0, -1, "and"}, 0, yes, {true, none, 0, false}},
        {"expired without trigger", {0, -1, "and"}, 0, no, {false, none, 0, false}},
        {"expired, waits for idleness", {0, 5, "and"}, 130, yes, {false, none, 3, true}},
        {"expired, one unit short of idle", {0, 5, "and"}, 299, yes, {false, none, 1, true}},
        {"expired, idle time unknown", {0, 1, "and"}, -1, yes, {false, none, 1, true}},
        {"expired, idle time unknown, none required", {0, 0, "and"}, -1, yes, {true, none, 0, false}},
        {"expired, odd word does not wait", {0, 5, "AND"}, 0, yes, {true, none, 0, false}},
        {"or, active: countdown goes on", {30, 10, "or"}, 240, yes, {false, 29, 6, true}},
        {"or, active, countdown sooner", {4, 10, "or"}, 0, yes, {false, 3, 3, false}},
        {"or, tie counts as idle", {7, 10, "or"}, 240, yes, {false, 6, 6, true}},
        {"or, last minute shows the idle wait", {1, 10, "or"}, 240, yes, {false, 0, 6, true}},
        {"or, idle starts and counts on", {30, 10, "or"}, 720, yes, {true, 29, 29, false}},
        {"or, idle without trigger", {30, 10, "or"}, 720, no, {false, none, 30, false}},
        {"odd word ignores idleness before expiry", {30, 10, ""}, 720, yes, {false, 29, 29, false}},
        {"no countdown, and, active", {-1, 10, "and"}, 0, yes, {false, none, -1, false}},
        {"no countdown, or, idle", {-1, 10, "or"}, 600, yes, {true, none, -1, false}},
        {"no countdown, or, active", {-1, 10, "or"}, 180, yes, {false, none, 7, true}},
        {"no countdown, or, idle time off", {-1, -1, "or"}, 720, yes, {false, none, -1, false}},
        {"edited to beyond all ranges", {lowest, lowest, "or"}, 0, yes, {true, most, most, false}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(decideDynamic(row.settings, row.idle, row.trigger), row.expected) << row.name;
}

TEST(BackupScheduler, FixedHours) {
    const NamedTimeZone zone("UTC");
    const IcuCalendar calendar(zone);
    const auto decide = [&](std::int64_t hour, microseconds timeOfDay, Trigger trigger) {
        return decideFixedHour("Time2", hour, midnight + timeOfDay, calendar, dateText, trigger);
    };
    struct Row {
        const char* name;
        microseconds timeOfDay;
        std::int64_t hour;
        std::int64_t minutes;
        bool start; // with trigger
    };
    const Row rows[] = {
        {"a minute and a half before rounds up", 13h + 58min + 30s, 14, 2, false},
        {"half a second before", 13h + 59min + 59s + 500ms, 14, 0, false},
        {"on the hour", 14h, 14, 0, true},
        {"end of the minute", 14h + 59s + 999ms, 14, 1, true},
        {"a minute past is tomorrow", 14h + 1min, 14, 1439, false},
        {"nonsense", 14h, lowest, -1, false},
    };
    for (const auto& row : rows) {
        const auto triggered = decide(row.hour, row.timeOfDay, Trigger::Yes);
        EXPECT_EQ(triggered.minutes, row.minutes) << row.name;
        EXPECT_EQ(triggered.startBackup, row.start) << row.name;
        EXPECT_FALSE(decide(row.hour, row.timeOfDay, Trigger::No).startBackup) << row.name;
    }
    EXPECT_THAT(decide(14, 13h + 30min, Trigger::No).logLines,
                ElementsAre("Delta minutes: 30", "Time2String: 840\tTimeCompareString: 810"));
}

TEST(BackupScheduler, NextBackupText) {
    struct Row {
        std::int64_t dynamic;
        bool onlyIfIdle;
        std::int64_t untilTime1, untilTime2;
        std::string text;
    };
    const Row rows[] = {
        {-1, false, -1, -1, "Automatic Backup not Active"},
        {6, true, -1, -1, "606 (if Idle)"},
        {0, true, -1, -1, "in less than one Minute (if Idle)"},
        {30, false, 20, 25, "620"},
        {30, false, 25, 20, "620"},
        {30, true, 0, -1, "in less than one Minute"},
        {20, true, 20, -1, "620"}, // a tie with a fixed hour is certain
    };
    for (const auto& row : rows) {
        const auto next = decideNextBackup({.minutes = row.dynamic, .onlyIfIdle = row.onlyIfIdle},
                                           row.untilTime1, row.untilTime2, midnight + 10h + 20s, dateText);
        EXPECT_EQ(next.menuText, "Next Backup: " + row.text);
        EXPECT_EQ(next.date.has_value(), row.dynamic >= 0) << row.text;
    }
    EXPECT_THAT(decideNextBackup({.minutes = 7}, 9, -1, midnight, dateText).logLines,
                ElementsAre("Fixed: 9\tDynamic: 7", "MenuString: Next Backup: 7"));
    EXPECT_GT(calculateNextBackupDate(midnight, most), midnight + years(9'000));
    EXPECT_LT(calculateNextBackupDate(midnight, lowest), midnight - years(9'000));
}

} // namespace
} // namespace orvello
