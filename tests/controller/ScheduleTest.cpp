#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;

plist::Dictionary schedule(std::int64_t interval, std::int64_t time1 = -1, std::int64_t idleTime = -1) {
    return {{std::string(key::BackupTimeInterval), interval},
            {std::string(key::MinutesUntilNextBackup), interval},
            {std::string(key::Time1), time1},
            {std::string(key::IdleTime), idleTime}};
}

TEST(Schedule, AnExpiredCountdownWaitsForIdleness) {
    Program program({.disk = Program::diskWith(schedule(10, -1, 5))});
    program.machine.setIdleTime(std::nullopt);
    program.pass(15min);
    EXPECT_TRUE(program.tool.starts.empty()) << "the idle time is unknown";
    for (int minute = 15; minute < 90; ++minute) {
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
    EXPECT_EQ(program.machine.ioRegistry().objectCount(), 0U);
}

TEST(Schedule, FixedHoursSleptThroughOrJumpedOverAreNotCaughtUp) {
    Program program({.disk = Program::diskWith(schedule(600, 14))});
    program.pass(1h + 30s);
    const auto statusRuns = program.runs("status");
    program.machine.sleepMachine(8h);
    program.pass(2min);
    EXPECT_LE(program.runs("status"), statusRuns + 13) << "waking makes no burst";
    EXPECT_EQ(program.menuTitles().at(3), "Next Backup: tomorrow, 02:00");
    program.machine.setWallClock(program.machine.now() - 24h * 400 - 4h);
    program.pass(2min);
    EXPECT_EQ(program.menuTitles().at(3), "Next Backup: today, 14:00");
    program.machine.setWallClock(program.machine.now() + 24h * 365 * 100 + 1h);
    program.pass(2min);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 600 - 66) << "the countdown does not mind";
    EXPECT_TRUE(program.tool.starts.empty());
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
}

} // namespace
} // namespace orvello
