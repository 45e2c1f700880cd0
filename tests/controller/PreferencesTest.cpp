#include "platform/plist/PropertyList.h"
#include "preferences/SchedulePane.h"
#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

TEST(IntervalText, IsInTheLargestUnitThatFits) {
    const std::pair<std::int64_t, const char*> rows[] = {
        {1, "1 Minutes"}, {59, "59 Minutes"}, {60, "1 Hour"},    {61, "1 Hours"},   {120, "2 Hours"},
        {1440, "1 Day"},  {1441, "1 Days"},   {10079, "6 Days"}, {10080, "1 Week"}, {10081, "1 Weeks"},
    };
    for (const auto& [minutes, text] : rows)
        EXPECT_EQ(formatTimeInterval(minutes), text);
}

class Preferences : public testing::Test {
  protected:
    PreferencesInterface& pane() { return *program.machine.preferencesWindow().controls(); }
    void choose(PopUpButton& button, std::int64_t tag) {
        const auto& items = button.items();
        for (std::size_t i = 0; i < items.size(); ++i)
            if (items[i].tag == tag)
                program.machine.perform([&] { button.userSelect(i); });
    }

    Program program{{.disk = Program::diskWith({{std::string(key::BackupTimeInterval), 77}})}};
};

TEST_F(Preferences, DestinationBoxShowsTheLastOneMarked) {
    const plist::Dictionary a{{"Name", "A"}, {"ID", "1"}, {"Kind", "Local"}, {"LastDestination", 1}};
    const plist::Dictionary network{{"Name", "<img src=x>"},
                                    {"ID", "2"},
                                    {"Kind", "Network"},
                                    {"LastDestination", true},
                                    {"URL", "smb://A & B"}};
    const auto list = [](plist::Value destinations) {
        return plist::serialize(plist::Dictionary{{"Destinations", std::move(destinations)}});
    };
    const std::string one = "Backup Destination Info: ";
    const std::string more = "Last Backup Destination Info: ";
    const auto* const nothing = "-, -, -, External, -";
    const auto* const shownA = "A, 1, Local, External, -";
    const auto* const shownNetwork = "<img src=x>, 2, Network, GenericFileServerIcon, smb://A & B";
    // What an update does not tell stays as it was, so that each row goes on from the one before.
    const std::pair<std::string, std::string> rows[] = {
        {"", one + nothing},
        {"tmutil: No destinations configured.", one + nothing},
        {list(plist::Array{plist::Dictionary{{"Name", "A"}, {"LastDestination", 2}}}), one + nothing},
        {list(plist::Array{network, a}), more + shownA},
        {list(plist::Array{}), more + shownA},
        {list(plist::Array{network, "B"}), more + shownNetwork},
        {list("text"), more + shownNetwork},
        {list(plist::Array{a}), one + shownA},
        {list(plist::Array{plist::Dictionary{{"LastDestination", 1}}}), one + nothing},
    };
    for (const auto& [output, shown] : rows) {
        program.tool.destinations = output;
        program.machine.perform([&] { program.controller().updateInfo(); });
        EXPECT_EQ(pane().InfoDestinationBox.title() + ": " + pane().InfoVolumeName.stringValue() + ", " +
                      pane().InfoVolumeID.stringValue() + ", " + pane().InfoVolumeType.stringValue() + ", " +
                      pane().InfoVolumeImage.image() + ", " + pane().InfoVolumeURL.stringValue(),
                  shown)
            << output;
    }
}

TEST_F(Preferences, EachChangeIsStoredAndTheNextBackupFollows) {
    EXPECT_EQ(pane().SettingsBackupTimeInterval.selectedIndex(), std::nullopt) << "no item has that value";
    EXPECT_EQ(program.integer(key::BackupTimeInterval), 77);
    EXPECT_EQ(pane().SettingsBackupTimeInterval.items().size(), 5U);
    EXPECT_EQ(pane().SettingsTime2.items().at(15).title, "14:00");
    choose(pane().SettingsBackupTimeInterval, 120);
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 120);
    EXPECT_EQ(pane().SettingsNextBackup.stringValue(), "Next Backup: today, 10:00");
    choose(pane().SettingsTime1, 8); // it is 8:00
    EXPECT_EQ(pane().SettingsNextBackup.stringValue(), "Next Backup: in less than one Minute");
    program.pass(5min);
    program.machine.setIdleTime(0s);
    choose(pane().SettingsTime1, -1);
    choose(pane().SettingsIdleTime, 30);
    choose(pane().SettingsAndOr, 1);
    EXPECT_EQ(pane().SettingsNextBackup.stringValue(), "Next Backup: today, 08:35 (if Idle)");
    EXPECT_EQ(program.integer(key::MinutesUntilNextBackup), 115)
        << "only the interval restarts the countdown";
    EXPECT_TRUE(program.tool.starts.empty());
}

TEST_F(Preferences, DefaultsComeBackForTheScheduleOnly) {
    choose(pane().SettingsIdleTime, 30);
    choose(pane().SettingsAndOr, 1);
    choose(pane().SettingsTime1, 6);
    choose(pane().SettingsTime2, 7);
    program.defaults().setObject(key::AutoStart, true);
    program.defaults().setObject(key::FilesTotal, 42);
    program.machine.perform([&] { pane().SettingsAppDefaults.click(); });
    const auto selected = {pane().SettingsBackupTimeInterval.selectedTag(),
                           pane().SettingsIdleTime.selectedTag(), pane().SettingsAndOr.selectedTag(),
                           pane().SettingsTime1.selectedTag(), pane().SettingsTime2.selectedTag()};
    EXPECT_THAT(selected, ElementsAre(60, -1, 0, -1, -1));
    EXPECT_EQ(pane().SettingsNextBackup.stringValue(), "Next Backup: today, 09:00");
    EXPECT_TRUE(program.defaults().boolForKey(key::AutoStart));
    EXPECT_EQ(program.integer(key::FilesTotal), 42);
}

TEST_F(Preferences, InformationFollowsAFinishedBackup) {
    EXPECT_EQ(pane().InfoLastBox.title(), "Last Backup");
    ASSERT_TRUE(program.machine.choose("Create Backup now"));
    EXPECT_EQ(pane().SettingsLastBackup.stringValue(), "today, 08:00");
    program.pass(6min);
    EXPECT_EQ(pane().InfoLastBox.title(), "Last Backup (today, 08:00)");
    EXPECT_EQ(pane().InfoLastFiles.stringValue(), std::to_string(program.integer(key::FilesLastBackup)));
    EXPECT_EQ(pane().InfoTotalBytes.stringValue(), "4 MB");
    EXPECT_EQ(program.runs("destinationinfo"), 2U) << "at the start, and behind the backup";
}

} // namespace
} // namespace orvello
