#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;

TEST(Start, FirstStartWelcomesAndAsksOnce) {
    const auto disk = Program::newDisk();
    {
        Program program({.disk = disk}, [](headless::Machine& machine) {
            machine.alerts().answerNext([&](const Alert& alert) {
                EXPECT_EQ(alert.message, "Welcome to Orvello!");
                EXPECT_EQ(alert.accessoryView, "TimeMachineSystem");
                EXPECT_TRUE(machine.openMenu()) << "the icon is there before the welcome ends";
                machine.closeMenu();
                machine.advance(2h);
                return AlertResponse::Default;
            });
            machine.alerts().answerNext([&](const Alert& alert) {
                EXPECT_EQ(alert.message, "Start at Login?");
                EXPECT_TRUE(machine.preferencesWindow().isVisible());
                return AlertResponse::Alternate;
            });
        });
        EXPECT_TRUE(program.tool.starts.empty()) << "nothing is scheduled before the start-up has ended";
        EXPECT_EQ(program.machine.alerts().shown().count(), 2U);
        EXPECT_TRUE(program.machine.loginItem().requests().empty());
    }
    Program again({.disk = disk});
    EXPECT_EQ(again.machine.alerts().shown().count(), 0U);
    EXPECT_FALSE(again.machine.preferencesWindow().isVisible());
}

TEST(Start, LogsWhereTheToolIsOrIsMissing) {
    EXPECT_EQ(Program().logged("Symlink found at: /usr/bin/tmutil"), 1U);
    Program without(
        {.disk = Program::diskWith({{std::string(key::ScriptRemind), plist::Value(false)}}, false)});
    EXPECT_EQ(without.logged("Finalize called"), 1U);
    without.pass(10min);
    without.machine.openMenu();
    EXPECT_TRUE(without.machine.tools().runs().empty());
    EXPECT_FALSE(without.item("Create Backup now").isEnabled());
}

TEST(Start, MenuIsCompleteAndValidatedAtEachOpening) {
    Program program({.disk = Program::diskWith({{std::string(key::AutoStart), plist::Value(true)}})});
    EXPECT_TRUE(program.item("Start at Login").isChecked()) << "before the menu is first opened";
    ASSERT_TRUE(program.machine.openMenu());
    EXPECT_EQ(program.menuTitles(),
              (std::vector<std::string>{"Create Backup now", "No Backup running", "Last Backup initiated: -",
                                        "Next Backup: today, 09:00", "", "Open Time Machine",
                                        "Start at Login", "Preferences...", "Quit Orvello"}));
    EXPECT_TRUE(program.item("Create Backup now").isEnabled());
    EXPECT_TRUE(program.item("No Backup running").isEnabled()) << "to be read, not to be greyed out";
    program.machine.closeMenu();

    EXPECT_TRUE(program.machine.choose("Open Time Machine"));
    EXPECT_EQ(program.machine.workspace().applications().last(), "/Applications/Time Machine.app");
    EXPECT_TRUE(program.machine.choose("Preferences..."));
    EXPECT_TRUE(program.machine.preferencesWindow().isVisible());
    EXPECT_TRUE(program.machine.choose("Quit Orvello"));
    EXPECT_TRUE(program.machine.hasEnded());
}

TEST(Start, LoginItemFollowsTheSettingUnlessRefused) {
    Program program;
    auto& machine = program.machine;
    auto& checkBox = machine.preferencesWindow().controls()->SettingsAutostart;
    for (const bool on : {true, false}) {
        machine.loginItem().setRefusing(true);
        machine.perform([&] { checkBox.userSet(on); });
        EXPECT_EQ(machine.alerts().shown().last().alert.informativeText,
                  on ? "Couldn't add Helper App to launch at login item list."
                     : "Couldn't remove Helper App from launch at login item list.");
        EXPECT_NE(program.defaults().boolForKey(key::AutoStart), on);
        EXPECT_NE(program.item("Start at Login").isChecked(), on);
        EXPECT_NE(checkBox.isOn(), on);
        machine.loginItem().setRefusing(false);
        ASSERT_TRUE(machine.choose("Start at Login"));
        EXPECT_EQ(machine.loginItem().isEnabled(), on);
        EXPECT_EQ(program.defaults().boolForKey(key::AutoStart), on);
        EXPECT_EQ(program.item("Start at Login").isChecked(), on);
        EXPECT_EQ(checkBox.isOn(), on);
    }
}

TEST(Start, WithoutATrayTheWindowShowsOnceThatTheProgramRuns) {
    for (const bool present : {true, false}) {
        Program program;
        program.machine.tray().setPresent(present);
        program.pass(29s);
        EXPECT_FALSE(program.machine.preferencesWindow().isVisible());
        program.pass(2s);
        EXPECT_NE(program.machine.preferencesWindow().isVisible(), present);
        program.machine.preferencesWindow().close();
        program.pass(1h);
        EXPECT_EQ(program.machine.preferencesWindow().orderFrontCount(), present ? 0U : 1U);
    }
}

} // namespace
} // namespace orvello
