#include "schedule/BackupScheduler.h"

#include "platform/Calendar.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvello {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;

constexpr Date midnight = sys_days{2026y / November / 22};

/// UTC, in which every hour of every day exists once.
class UtcCalendar : public Calendar {
  public:
    LocalTime localTime(Date date) const override {
        const auto seconds = duration_cast<std::chrono::seconds>(date - midnight).count();
        return {.hour = static_cast<int>(seconds / 3600), .minute = static_cast<int>(seconds / 60 % 60)};
    }
    std::vector<Date> instantsAtHour(Date reference, int dayOffset, std::int64_t hour) const override {
        if (hour < 0 || hour > 23)
            return {};
        return {floor<days>(reference) + days(dayOffset) + hours(hour)};
    }
};

const UtcCalendar utc;

std::string timeText(Date date) {
    const auto local = utc.localTime(date);
    return std::to_string(local.hour) + ":" + std::to_string(local.minute);
}

/// Minutes since midnight, so that a menu text tells which minute it names.
std::string dateText(Date date) {
    return std::to_string(floor<minutes>(date - midnight).count());
}

constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
constexpr auto most = std::numeric_limits<std::int64_t>::max();

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
        {"running countdown loses a minute", {60, -1, "and"}, 0, yes, {false, 59, 59, false}},
        {"without trigger nothing moves", {60, -1, "and"}, 0, no, {false, none, 60, false}},
        {"last minute of the countdown", {1, -1, "or"}, 0, yes, {false, 0, 0, false}},
        {"expired: starts and keeps 0", {0, -1, "and"}, 0, yes, {true, none, 0, false}},
        {"expired without trigger", {0, -1, "and"}, 0, no, {false, none, 0, false}},
        {"expired, waits for idleness", {0, 5, "and"}, 130, yes, {false, none, 3, true}},
        {"expired, idle long enough", {0, 5, "and"}, 300, yes, {true, none, 0, false}},
        {"expired, one unit short of idle", {0, 5, "and"}, 299, yes, {false, none, 1, true}},
        {"expired, idle time unknown", {0, 1, "and"}, -1, yes, {false, none, 1, true}},
        {"expired, idle time unknown, none required", {0, 0, "and"}, -1, yes, {true, none, 0, false}},
        {"expired, or does not wait", {0, 5, "or"}, 0, yes, {true, none, 0, false}},
        {"expired, odd word does not wait", {0, 5, "AND"}, 0, yes, {true, none, 0, false}},
        {"or, active: countdown goes on", {30, 10, "or"}, 240, yes, {false, 29, 6, true}},
        {"or, active, countdown sooner", {4, 10, "or"}, 0, yes, {false, 3, 3, false}},
        {"or, tie counts as idle", {7, 10, "or"}, 240, yes, {false, 6, 6, true}},
        {"or, last minute shows the idle wait", {1, 10, "or"}, 240, yes, {false, 0, 6, true}},
        {"or, idle starts and counts on", {30, 10, "or"}, 720, yes, {true, 29, 29, false}},
        {"or, idle without trigger", {30, 10, "or"}, 720, no, {false, none, 30, false}},
        {"and ignores idleness before expiry", {30, 10, "and"}, 720, yes, {false, 29, 29, false}},
        {"odd word ignores idleness before expiry", {30, 10, ""}, 720, yes, {false, 29, 29, false}},
        {"no countdown, and", {-1, 10, "and"}, 720, yes, {false, none, -1, false}},
        {"no countdown, or, idle", {-1, 10, "or"}, 600, yes, {true, none, -1, false}},
        {"no countdown, or, idle, no trigger", {-1, 10, "or"}, 600, no, {false, none, -1, false}},
        {"no countdown, or, active", {-1, 10, "or"}, 180, yes, {false, none, 7, true}},
        {"no countdown, or, idle time off", {-1, -1, "or"}, 720, yes, {false, none, -1, false}},
        {"edited to beyond all ranges", {lowest, lowest, "or"}, 0, yes, {true, most, most, false}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(decideDynamic(row.settings, row.idle, row.trigger), row.expected) << row.name;
}

TEST(BackupScheduler, FixedHours) {
    struct Row {
        const char* name;
        microseconds timeOfDay;
        std::int64_t hour;
        std::int64_t minutes;
        bool start; // with trigger
    };
    const Row rows[] = {
        {"two minutes before", 13h + 58min, 14, 2, false},
        {"a minute and a half before rounds up", 13h + 58min + 30s, 14, 2, false},
        {"a second before", 13h + 59min + 59s, 14, 1, false},
        {"half a second before", 13h + 59min + 59s + 500ms, 14, 0, false},
        {"on the hour", 14h, 14, 0, true},
        {"within the minute", 14h + 20s, 14, 1, true},
        {"end of the minute", 14h + 59s + 999ms, 14, 1, true},
        {"a minute past is tomorrow", 14h + 1min, 14, 1439, false},
        {"midnight of tomorrow", 23h + 59min + 30s, 0, 1, false},
        {"midnight now", 10s, 0, 1, true},
        {"off", 14h, -1, -1, false},
        {"no hour of a day", 14h, 24, -1, false},
        {"nonsense", 14h, lowest, -1, false},
    };
    const auto decide = [](std::int64_t hour, microseconds timeOfDay, Trigger trigger) {
        return decideFixedHour("Time2", hour, midnight + timeOfDay, utc, timeText, trigger);
    };
    for (const auto& row : rows) {
        const auto triggered = decide(row.hour, row.timeOfDay, Trigger::Yes);
        EXPECT_EQ(triggered.minutes, row.minutes) << row.name;
        EXPECT_EQ(triggered.startBackup, row.start) << row.name;
        EXPECT_FALSE(decide(row.hour, row.timeOfDay, Trigger::No).startBackup) << row.name;
    }
    EXPECT_EQ(decide(14, 13h + 30min, Trigger::No).logLines,
              (std::vector<std::string>{"Delta minutes: 30", "Time2String: 14:0\tTimeCompareString: 13:30"}));
    EXPECT_TRUE(decide(-1, 0h, Trigger::Yes).logLines.empty());
}

TEST(BackupScheduler, NextBackupText) {
    const auto dynamic = [](std::int64_t minutes, bool onlyIfIdle) {
        return DynamicDecision{.minutes = minutes, .onlyIfIdle = onlyIfIdle};
    };
    struct Row {
        DynamicDecision dynamic;
        std::int64_t untilTime1, untilTime2;
        std::string text;
    };
    const Row rows[] = {
        {dynamic(-1, false), -1, -1, "Automatic Backup not Active"},
        {dynamic(0, false), -1, -1, "in less than one Minute"},
        {dynamic(30, false), -1, -1, "630"},
        {dynamic(6, true), -1, -1, "606 (if Idle)"},
        {dynamic(0, true), -1, -1, "in less than one Minute (if Idle)"},
        {dynamic(30, false), 20, 25, "620"},
        {dynamic(30, false), 25, 20, "620"},
        {dynamic(30, true), 0, -1, "in less than one Minute"},
        {dynamic(6, true), 20, -1, "606 (if Idle)"},
        {dynamic(20, true), 20, -1, "620"}, // a tie with a fixed hour is certain
    };
    for (const auto& row : rows) {
        const auto next =
            decideNextBackup(row.dynamic, row.untilTime1, row.untilTime2, midnight + 10h + 20s, dateText);
        EXPECT_EQ(next.menuText, "Next Backup: " + row.text);
        EXPECT_EQ(next.date.has_value(), row.dynamic.minutes >= 0) << row.text;
        EXPECT_EQ(next.logLines.back(), "MenuString: " + next.menuText);
    }
    EXPECT_EQ(decideNextBackup(dynamic(7, false), 9, -1, midnight, dateText).logLines.front(),
              "Fixed: 9\tDynamic: 7");
}

TEST(BackupScheduler, NextBackupDateKeepsTheSecondsAndItsBounds) {
    EXPECT_EQ(calculateNextBackupDate(midnight + 20s, 5), midnight + 5min + 20s);
    EXPECT_GT(calculateNextBackupDate(midnight, most), midnight + years(9'000));
    EXPECT_LT(calculateNextBackupDate(midnight, lowest), midnight - years(9'000));
}

} // namespace
} // namespace orvello
