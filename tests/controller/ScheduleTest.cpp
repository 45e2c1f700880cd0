#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;

plist::Dictionary schedule(std::int64_t interval, std::int64_t time1 = -1, std::int64_t time2 = -1) {
    return {{std::string(key::BackupTimeInterval), interval},
            {std::string(key::MinutesUntilNextBackup), interval},
            {std::string(key::Time1), time1},
            {std::string(key::Time2), time2}};
}

plist::Dictionary idleSchedule(std::int64_t interval, const char* andOr, std::int64_t idleTime) {
    auto settings = schedule(interval);
    settings.insert_or_assign(std::string(key::AndOr), plist::Value(andOr));
    settings.insert_or_assign(std::string(key::IdleTime), plist::Value(idleTime));
    return settings;
}

/// When backups were started, as the local hour and minute of a zone so many hours ahead of UTC.
std::vector<std::string> startTimes(const Program& program, int utcOffset) {
    std::vector<std::string> times;
    for (const auto& start : program.tool.starts) {
        const auto ofDay = std::chrono::floor<std::chrono::minutes>(
            start - std::chrono::floor<std::chrono::days>(start + std::chrono::hours(utcOffset)) +
            std::chrono::hours(utcOffset));
        times.push_back(std::to_string(ofDay / 1h) + ":" + std::to_string(ofDay % 1h / 1min));
    }
    return times;
}

TEST(Schedule, AnIntervalOfKMinutesStartsOnTickKPlusOneForDays) {
    Program program({.disk = Program::diskWith(schedule(60))});
    const auto begin = program.machine.now();
    program.pass(60min + 30s);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 0);
    EXPECT_TRUE(program.tool.starts.empty());
    program.pass(24h * 5);
    for (std::size_t i = 0; i < program.tool.starts.size(); ++i)
        EXPECT_EQ(program.tool.starts[i], begin + 61min * (static_cast<int>(i) + 1));
    EXPECT_EQ(program.tool.starts.size(), 24U * 5 * 60 / 61 + 1);
}

TEST(Schedule, ARestartGoesOnWhereTheCountdownStood) {
    const auto disk = Program::diskWith(schedule(60));
    auto now = Program({.disk = disk}).machine.now();
    for (int minute = 0; minute < 60; minute += 15) {
        Program program({.start = now, .disk = disk});
        program.pass(15min + 30s);
        EXPECT_TRUE(program.tool.starts.empty());
        now = program.machine.now();
    }
    Program last({.start = now, .disk = disk});
    EXPECT_EQ(last.integer(key::MinutesUntilNextBackup), 0);
    last.pass(1min);
    EXPECT_EQ(last.tool.starts.size(), 1U);
}

TEST(Schedule, AnExpiredCountdownWaitsForIdlenessWithAnd) {
    Program program({.disk = Program::diskWith(idleSchedule(10, "and", 5))});
    for (int minute = 0; minute < 90; ++minute) {
        program.machine.setIdleTime(20s);
        program.pass(1min);
    }
    EXPECT_TRUE(program.tool.starts.empty());
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 0);
    EXPECT_TRUE(program.logged("MenuString: Next Backup: today, 09:34 (if Idle)"))
        << "1 of 5 minutes idle at 9:30";
    program.machine.setIdleTime(0s);
    program.pass(5min + 10s);
    EXPECT_TRUE(program.tool.starts.empty()) << "5 idle minutes are 5 min 22 s";
    program.pass(1min);
    EXPECT_EQ(program.tool.starts.size(), 1U);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 10);
}

TEST(Schedule, AnIdleStartLeavesTheCountdownRunning) {
    Program program({.disk = Program::diskWith(idleSchedule(120, "or", 10))});
    program.machine.setIdleTime(0s);
    program.pass(31min);
    EXPECT_GT(program.tool.starts.size(), 2U) << "asked again on every tick while the user stays idle";
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 89);
}

TEST(Schedule, FixedHoursStartOnceADay) {
    Program program({.disk = Program::diskWith(schedule(-1, 14, 0))});
    program.pass(24h * 2);
    EXPECT_EQ(startTimes(program, 1), (std::vector<std::string>{"14:0", "0:0", "14:0", "0:0"}));
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), -1);
    Program sameHourTwice({.disk = Program::diskWith(schedule(-1, 9, 9))});
    sameHourTwice.pass(2h);
    EXPECT_EQ(sameHourTwice.tool.starts.size(), 1U);
}

TEST(Schedule, FixedHoursOnDaysOf23And25Hours) {
    // Spring: 2:00 does not exist, the clock goes on at 3:00. Autumn: 2:00 comes twice.
    struct Row {
        const char* name;
        Date start;
        std::int64_t hour;
        std::vector<std::string> utcTimes;
        const char* zone = "Europe/Berlin";
    };
    const Row rows[] = {
        {"spring, an hour that does not exist", berlin(2026, 3, 28, 12, 0, 1), 2, {"1:0", "0:0"}},
        {"spring, the hour behind the gap", berlin(2026, 3, 28, 12, 0, 1), 3, {"1:0", "1:0"}},
        {"autumn, an hour that comes twice", berlin(2026, 10, 24, 12, 0, 2), 2, {"0:0", "1:0", "1:0"}},
        {"autumn, the hour after it", berlin(2026, 10, 24, 12, 0, 2), 3, {"2:0", "2:0"}},
        // From 23:00 to midnight: due on the next day, and not at midnight a day before.
        {"the last hour skipped", berlin(2009, 6, 18, 14, 0, 2), 23, {"17:0", "17:0"}, "Asia/Dhaka"},
        {"the whole day skipped", berlin(2011, 12, 30, 2, 0, 2), 14, {"10:0", "0:0"}, "Pacific/Apia"},
    };
    for (const auto& row : rows) {
        Program program(
            {.start = row.start, .timeZone = row.zone, .disk = Program::diskWith(schedule(-1, row.hour))});
        program.pass(40h);
        EXPECT_EQ(startTimes(program, 0), row.utcTimes) << row.name;
    }
}

TEST(Schedule, TheMenuNeverPromisesThePastAcrossAClockChange) {
    for (const auto start : {berlin(2026, 3, 28, 20, 0, 1), berlin(2026, 10, 24, 20, 0, 2)}) {
        Program program({.start = start, .disk = Program::diskWith(schedule(-1, 2, 3))});
        for (int minute = 0; minute < 16 * 60; ++minute) {
            program.pass(1min);
            ASSERT_GE(program.controller().nextBackupDate(), program.machine.now());
            ASSERT_LE(program.controller().nextBackupDate(), program.machine.now() + 25h);
        }
    }
}

TEST(Schedule, AFixedHourSleptThroughIsNotCaughtUpAndWakingMakesNoBurst) {
    Program program({.disk = Program::diskWith(schedule(600, 14))});
    program.pass(1h + 30s);
    const auto countdown = program.integer(key::MinutesUntilNextBackup);
    const auto statusRuns = program.runs("status");
    program.machine.sleepMachine(8h);
    program.pass(60s);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), countdown - 1);
    EXPECT_LE(program.runs("status"), statusRuns + 7);
    EXPECT_TRUE(program.tool.starts.empty());
    EXPECT_EQ(program.menuTitles().at(3), "Next Backup: tomorrow, 02:00");
}

TEST(Schedule, TheClockMaySetBackAndForward) {
    Program program({.disk = Program::diskWith(schedule(300, 14))});
    program.pass(6h + 30s - 5min); // 13:55:30
    program.tool.starts.clear();
    program.machine.setWallClock(program.machine.now() - 24h * 400);
    program.pass(2min);
    EXPECT_EQ(program.menuTitles().at(3), "Next Backup: today, 14:00");
    program.machine.setWallClock(program.machine.now() + 24h * 365 * 100 + 1h);
    program.pass(2min);
    EXPECT_TRUE(program.tool.starts.empty()) << "14:00 was jumped over";
    const auto countdown = program.integer(key::MinutesUntilNextBackup);
    program.pass(10min);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), countdown - 10) << "the countdown does not mind";
}

TEST(Schedule, ABackupThatTheSystemBeganIsWaitedFor) {
    Program program({.disk = Program::diskWith(schedule(10))});
    program.pass(9min);
    program.tool.length = 30min;
    program.tool.begin();
    program.pass(25min);
    EXPECT_TRUE(program.tool.starts.empty());
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 0);
    EXPECT_EQ(program.defaults().dateForKey(key::LastBackup), neverDate());
    program.pass(6min);
    EXPECT_EQ(program.tool.starts.size(), 1U) << "on the first tick that finds the tool idle";
}

TEST(Schedule, AToolThatHangsCostsItsTimeLimitAndNothingElse) {
    Program program({.disk = Program::diskWith(schedule(5))});
    program.tool.hangs = true;
    program.pass(3min);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 2) << "every minute has its tick";
    program.tool.hangs = false;
    program.pass(4min);
    EXPECT_EQ(program.tool.starts.size(), 1U);
    EXPECT_TRUE(program.tool.isRunning());
}

} // namespace
} // namespace orvello
