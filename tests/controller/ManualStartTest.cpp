#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;

TEST(ManualStart, IsAskedOnceHoweverLongTheUserIsAway) {
    Program program({.disk = Program::diskWith({{std::string(key::MinutesUntilNextBackup), 0},
                                                {std::string(key::ScriptRemind), plist::Value(false)}},
                                               false)});
    auto& alerts = program.machine.alerts();
    const auto answerAfterHours = [&](AlertResponse response) {
        alerts.answerNext([&program, response](const Alert& alert) {
            EXPECT_EQ(alert.message, "Please start Backup now");
            program.pass(9h);
            return response;
        });
    };
    answerAfterHours(AlertResponse::Alternate);
    program.pass(1min);
    EXPECT_EQ(program.defaults().dateForKey(key::LastBackup), neverDate()) << "skipping records nothing";
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 60);
    answerAfterHours(AlertResponse::Default);
    program.pass(61min);
    EXPECT_EQ(program.defaults().dateForKey(key::LastBackup), program.machine.now()) << "as of the answer";
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 60);
    EXPECT_EQ(alerts.shown().count(), 2U);
    EXPECT_GE(program.controller().nextBackupDate(), program.machine.now());
    EXPECT_EQ(program.machine.tools().runs().count(), 0U);
}

} // namespace
} // namespace orvello
