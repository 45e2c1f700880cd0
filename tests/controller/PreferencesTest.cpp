#include "preferences/InfoPanel.h"
#include "preferences/SchedulePane.h"
#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;

TEST(Preferences, IntervalTexts) {
    const std::pair<std::int64_t, const char*> rows[] = {
        {1, "1 Minutes"}, {59, "59 Minutes"}, {60, "1 Hour"},    {61, "1 Hours"},   {120, "2 Hours"},
        {1440, "1 Day"},  {1441, "1 Days"},   {10079, "6 Days"}, {10080, "1 Week"}, {10081, "1 Weeks"},
    };
    for (const auto& [minutes, text] : rows)
        EXPECT_EQ(formatTimeInterval(minutes), text);
}

TEST(Preferences, DestinationBoxShowsTheLastOneMarked) {
    const auto destination = [](const char* name, int mark) {
        return plist::Dictionary{{"Name", name}, {"ID", "ID"}, {"Kind", "Local"}, {"LastDestination", mark}};
    };
    const plist::Dictionary network{{"Name", "<img src=x>"},
                                    {"ID", "ID"},
                                    {"Kind", "Network"},
                                    {"LastDestination", 1},
                                    {"URL", "smb://A & B"}};
    const DestinationTexts a{"Local", "External", "A", "ID", "-"};
    const DestinationTexts n{"Network", "GenericFileServerIcon", "<img src=x>", "ID", "smb://A & B"};
    const std::string one = "Backup Destination Info";
    const std::string more = "Last Backup Destination Info";
    const std::pair<std::optional<plist::Array>, DestinationBoxUpdate> rows[] = {
        {std::nullopt, {}},
        {plist::Array{}, {}},
        {plist::Array{destination("A", 1)}, {one, a}},
        {plist::Array{destination("A", 2)}, {one, std::nullopt}},
        {plist::Array{destination("A", 0), network}, {more, n}},
        {plist::Array{network, destination("A", 1)}, {more, a}},
        {plist::Array{destination("A", 1), "B"}, {more, a}},
        {plist::Array{plist::Dictionary{{"LastDestination", true}}},
         {one, DestinationTexts{"-", "External", "-", "-", "-"}}},
    };
    for (const auto& [list, expected] : rows)
        EXPECT_EQ(describeDestinations(list), expected);
}

class SchedulePane : public testing::Test {
  protected:
    PreferencesInterface& pane() { return *program.machine.preferencesWindow().controls(); }
    void choose(PopUpButton& button, std::int64_t tag) {
        const auto& items = button.items();
        for (std::size_t i = 0; i < items.size(); ++i)
            if (items[i].tag == tag)
                program.machine.perform([&] { button.userSelect(i); });
    }

    Program program;
};

TEST_F(SchedulePane, EachChangeIsStoredAndTheNextBackupFollows) {
    EXPECT_EQ(pane().SettingsBackupTimeInterval.items().size(), 5U);
    EXPECT_EQ(pane().SettingsIdleTime.items().back().title, "60 Minutes");
    EXPECT_EQ(pane().SettingsTime2.items().at(15).title, "14:00");
    choose(pane().SettingsBackupTimeInterval, 120);
    EXPECT_EQ(program.integer(key::BackupTimeInterval), 120);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 120);
    EXPECT_EQ(pane().SettingsNextBackup.stringValue(), "Next Backup: today, 10:00");
    choose(pane().SettingsTime1, 9);
    EXPECT_EQ(program.integer(key::Time1), 9);
    EXPECT_EQ(pane().SettingsNextBackup.stringValue(), "Next Backup: today, 09:00");
    choose(pane().SettingsTime2, 8); // it is 8:00
    EXPECT_EQ(program.integer(key::Time2), 8);
    EXPECT_EQ(pane().SettingsNextBackup.stringValue(), "Next Backup: in less than one Minute");
    program.machine.setIdleTime(0s);
    choose(pane().SettingsTime2, -1);
    choose(pane().SettingsIdleTime, 30);
    choose(pane().SettingsAndOr, 1);
    EXPECT_EQ(program.defaults().stringForKey(key::AndOr), "or");
    EXPECT_EQ(pane().SettingsNextBackup.stringValue(), "Next Backup: today, 08:30 (if Idle)");
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 120)
        << "only the interval restarts the countdown";
    EXPECT_TRUE(program.tool.starts.empty());
}

TEST_F(SchedulePane, DefaultsComeBackForTheScheduleOnly) {
    for (auto* button : {&pane().SettingsBackupTimeInterval, &pane().SettingsIdleTime, &pane().SettingsTime1})
        choose(*button, -1);
    choose(pane().SettingsTime2, 7);
    program.defaults().setObject(key::AutoStart, true);
    program.defaults().setObject(key::FilesTotal, 42);
    program.machine.perform([&] { pane().SettingsAppDefaults.click(); });
    EXPECT_EQ(program.integer(key::BackupTimeInterval), 60);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 60);
    EXPECT_EQ(pane().SettingsBackupTimeInterval.selectedTag(), 60);
    EXPECT_EQ(pane().SettingsTime2.selectedTag(), -1);
    EXPECT_TRUE(program.defaults().boolForKey(key::AutoStart));
    EXPECT_EQ(program.integer(key::FilesTotal), 42);
}

TEST(Preferences, AStoredValueWithoutItemIsShownAsNoneAndKept) {
    Program program({.disk = Program::diskWith({{std::string(key::BackupTimeInterval), 77}})});
    EXPECT_EQ(program.machine.preferencesWindow().controls()->SettingsBackupTimeInterval.selectedIndex(),
              std::nullopt);
    program.pass(1h);
    EXPECT_EQ(program.integer(key::BackupTimeInterval), 77);
}

TEST(Preferences, InformationFollowsAFinishedBackup) {
    Program program;
    auto& panel = *program.machine.preferencesWindow().controls();
    EXPECT_EQ(panel.InfoLastBox.title(), "Last Backup");
    ASSERT_TRUE(program.machine.choose("Create Backup now"));
    EXPECT_EQ(panel.SettingsLastBackup.stringValue(), "today, 08:00");
    program.pass(6min);
    EXPECT_EQ(panel.InfoLastBox.title(), "Last Backup (today, 08:00)");
    EXPECT_EQ(panel.InfoLastFiles.stringValue(), std::to_string(program.integer(key::FilesLastBackup)));
    EXPECT_EQ(panel.InfoTotalBytes.stringValue(), "4 MB");
    EXPECT_EQ(program.runs("destinationinfo"), 2U) << "at the start, and behind the backup";
}

} // namespace
} // namespace orvello
