#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace orvello {
namespace {

using namespace std::chrono_literals;

/// The titles of the entries above the separator, without the hidden ones.
std::vector<std::string> status(Program& program) {
    auto titles = program.menuTitles();
    titles.erase(std::ranges::find(titles, ""), titles.end());
    return titles;
}

TEST(BackupRoad, FromTheTickThatFindsItDueToIdleAgain) {
    Program program({.disk = Program::diskWith({{std::string(key::MinutesUntilNextBackup), 0}})});
    program.pass(59s);
    EXPECT_EQ(program.machine.tray().shownImage(), "TMRotatingArrow");
    EXPECT_TRUE(program.tool.starts.empty());
    program.pass(1s);
    EXPECT_EQ(program.tool.starts.size(), 1U);
    EXPECT_EQ(program.logged("startbackup returned: "), 1U);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 60);
    EXPECT_EQ(program.defaults().dateForKey(key::LastBackup), program.machine.now());

    using Titles = std::vector<std::string>;
    const auto cancel = std::string(cancelBackupTitle);
    EXPECT_EQ(program.machine.tray().shownImage(), "TMBackingUp");
    EXPECT_EQ(status(program), (Titles{cancel, "Starting Backup ...", "Last Backup initiated: -",
                                       "Next Backup: in less than one Minute"}));
    program.pass(2min);
    EXPECT_EQ(status(program),
              (Titles{cancel, "Copying Data ...", "Progress: 50 %", "Files Copied: 500 of 1000",
                      "Data Copied: 2.5 MB of 5 MB", "Time Remaining: 30 Seconds"}));
    program.pass(100s);
    EXPECT_EQ(status(program),
              (Titles{cancel, "Cleaning Up ...", "Files Copied: 1000", "Data Copied: 5 MB"}));
    program.pass(20s);
    EXPECT_EQ(status(program), (Titles{"Create Backup now", "No Backup running",
                                       "Last Backup initiated: today, 08:01", "Next Backup: today, 09:01"}));
    EXPECT_EQ(program.machine.tray().shownImage(), "TMRotatingArrow");
    EXPECT_EQ(program.integer(key::FilesLastBackup), 791) << "the last sample of the copying phase";
    EXPECT_EQ(program.integer(key::FilesTotal), 791);
    EXPECT_EQ(program.integer(key::BytesLastBackup), 3'958'333);
}

TEST(BackupRoad, TheMenuRefreshesEveryTwoSecondsWhileOpenElseEveryTen) {
    Program program;
    program.pass(1s + 300ms); // 1.3 s after start-up made the timer
    const auto count = [&] { return program.runs("status"); };
    program.machine.openMenu();
    EXPECT_EQ(count(), 1U) << "validation";
    program.pass(700ms);
    EXPECT_EQ(count(), 2U) << "two seconds after the timer was made";
    program.pass(20s);
    EXPECT_EQ(count(), 12U) << "one timer, and no ten-second refresh meanwhile";
    program.machine.closeMenu();
    program.pass(0s);
    EXPECT_EQ(count(), 13U) << "the ten-second refresh that had to wait, once";
    program.pass(18s); // to 40.0 s after the start
    EXPECT_EQ(count(), 15U);

    program.machine.openMenu(); // 18 seconds after the close
    program.pass(0s);
    EXPECT_EQ(count(), 17U) << "validation, and the late timer at once";
    program.pass(2s);
    EXPECT_EQ(count(), 18U);
    program.pass(58s);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 59) << "the tick goes on while the menu is open";
}

TEST(BackupRoad, AClickStartsAndAClickCancels) {
    const Date before = neverDate() + 1h;
    Program program({.disk = Program::diskWith({{std::string(key::LastBackup), before}})});
    ASSERT_TRUE(program.machine.choose("Create Backup now"));
    EXPECT_EQ(program.tool.starts.size(), 1U);
    EXPECT_NE(program.defaults().dateForKey(key::LastBackup), before);
    program.pass(2min);
    const auto countdown = program.integer(key::MinutesUntilNextBackup);
    ASSERT_TRUE(program.machine.choose(cancelBackupTitle));
    EXPECT_EQ(program.tool.stops, 1);
    EXPECT_EQ(program.logged("cancelbackup returned: "), 1U);
    EXPECT_EQ(program.defaults().dateForKey(key::LastBackup), before);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), countdown)
        << "a cancel leaves the countdown alone";
    EXPECT_EQ(program.integer(key::FilesLastBackup), 500) << "what was sampled before the stop counts";

    Program another({.disk = Program::diskWith({{std::string(key::LastBackup), before}})});
    another.tool.begin(); // by another hand
    another.pass(10s);
    ASSERT_TRUE(another.machine.choose(cancelBackupTitle));
    EXPECT_EQ(another.defaults().dateForKey(key::LastBackup), neverDate());
}

TEST(BackupRoad, StatisticsSurviveACounterThatStartsAgainAndAQuitInBetween) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    const auto disk = Program::diskWith({{std::string(key::BytesTotal), most}});
    Date now;
    {
        Program program({.disk = disk});
        program.tool.begin();
        program.pass(2min);           // 500 files
        for (int i = 0; i < 2; ++i) { // a count that stands still has not started again
            program.machine.openMenu();
            program.machine.closeMenu();
        }
        program.tool.begin();
        program.pass(1min + 30s); // from a lower count
        EXPECT_EQ(program.integer(key::FilesThisBackup), 500);
        now = program.machine.now();
    }
    Program program({.start = now, .disk = disk});
    program.tool.begin();
    program.pass(10min);
    EXPECT_EQ(program.integer(key::FilesThisBackup), 0);
    EXPECT_EQ(program.integer(key::FilesLastBackup), 500 + 791)
        << "the banked files count into the next backup";
    EXPECT_EQ(program.integer(key::FilesTotal), 500 + 791);
    EXPECT_LT(program.integer(key::BytesTotal), 0) << "beyond the range a sum goes on at its other end";
}

} // namespace
} // namespace orvello
