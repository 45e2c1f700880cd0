#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;

std::shared_ptr<headless::Disk> disk(std::int64_t countdown) {
    return Program::diskWith({{std::string(key::MinutesUntilNextBackup), countdown},
                              {std::string(key::BackupTimeInterval), 60},
                              {std::string(key::ScriptRemind), plist::Value(false)}},
                             false);
}

TEST(ManualStart, IsAskedOnceHoweverLongTheUserIsAway) {
    Program program({.disk = disk(0)});
    program.machine.alerts().answerNext([&](const Alert& alert) {
        EXPECT_EQ(alert.message, "Please start Backup now");
        program.pass(9h);
        return AlertResponse::Default;
    });
    program.pass(1min);
    EXPECT_EQ(program.machine.alerts().shown().count(), 1U);
    EXPECT_EQ(program.defaults().dateForKey(key::LastBackup), program.machine.now()) << "as of the answer";
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 60);
    EXPECT_GE(program.controller().nextBackupDate(), program.machine.now());
    EXPECT_EQ(program.machine.tools().runs().count(), 0U);
}

TEST(ManualStart, AMonthWithoutTheTool) {
    Program program({.disk = disk(60)});
    program.machine.alerts().answerOthers([&](const Alert&) {
        program.pass(3min);
        return AlertResponse::Alternate;
    });
    program.pass(24h * 30);
    // 61 ticks to an alert; the three ticks inside it find the countdown still expired and must not ask
    // again.
    EXPECT_EQ(program.machine.alerts().shown().count(), 24U * 30 * 60 / 64);
    for (const auto& shown : program.machine.alerts().shown().entries())
        EXPECT_EQ(shown.depth, 1);
    EXPECT_EQ(program.defaults().dateForKey(key::LastBackup), neverDate()) << "skipping records nothing";
}

TEST(ManualStart, QuittingInsideTheAlertAnswersNothing) {
    const auto before = disk(0);
    Program program({.disk = before});
    program.machine.alerts().answerNext([&](const Alert&) {
        program.machine.choose("Quit Orvello");
        return AlertResponse::Alternate;
    });
    program.pass(5min);
    EXPECT_TRUE(program.machine.hasEnded());
    Program again({.disk = before});
    EXPECT_EQ(again.integer(key::MinutesUntilNextBackup), 0)
        << "the question is still open at the next start";
}

} // namespace
} // namespace orvello
