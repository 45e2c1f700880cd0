#include "statusmenu/StatusMenu.h"

#include "settings/SettingsKeys.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;
using Kind = StatisticsCall::Kind;
using Calls = std::vector<StatisticsCall>;

/// Entries with titles that no row writes; every second line is hidden, so that a change of visibility shows.
StatusMenuState before() {
    return {.backupTitle = "old",
            .backupEnabled = false,
            .lines = {{{"two", false}, {"three", true}, {"four", false}, {"five", true}, {"six", false}}},
            .icons = IconPair::Idle};
}

StatusMenuUpdate refresh(std::optional<StatusDictionary> status,
                         std::optional<std::string> nextBackup = "Next", Date lastBackup = neverDate(),
                         const StatusMenuState& state = before()) {
    const StatusMenuInput input{
        .status = std::move(status),
        .nextBackup = std::move(nextBackup),
        .lastBackup = lastBackup,
        .dateText = [](Date) { return std::string("a date"); },
        .byteText = [](std::int64_t bytes) { return "<" + std::to_string(bytes) + ">"; },
    };
    return mapStatusMenu(input, state);
}

StatusDictionary runningIn(const char* phase, plist::Value percent = -1.0, plist::Dictionary progress = {}) {
    return {.Status = "Running",
            .BackupPhase = plist::Value(phase),
            .Percent = std::move(percent),
            .Progress = plist::Value(std::move(progress))};
}

const plist::Dictionary counters{
    {"files", 10}, {"totalFiles", 100}, {"bytes", 1000}, {"totalBytes", 5000}, {"TimeRemaining", 120.7}};

TEST(StatusMenu, EachStatusSetsItsRow) {
    using Lines = std::array<MenuLine, 5>;
    struct Row {
        const char* name;
        StatusMenuUpdate update;
        bool enable;
        IconPair icons;
        const char* backupTitle;
        bool backupEnabled;
        Lines lines;
        Calls calls;
    };
    const MenuLine two{"two", false};
    const MenuLine three{"three", true};
    const MenuLine four{"four", false};
    const MenuLine five{"five", true};
    const MenuLine six{"six", false};
    const auto cancel = std::string(cancelBackupTitle);
    const auto idle = IconPair::Idle;
    const auto busy = IconPair::Busy;
    const Calls flush{{Kind::Flush}};
    const StatusDictionary idleStatus{.Status = "Idle"};
    const auto lastYear = neverDate() + 1s;
    auto withoutPhase = runningIn("");
    withoutPhase.BackupPhase.reset();
    auto withoutProgress = runningIn("Copying", 0.29);
    withoutProgress.Progress.reset();

    const Row rows[] = {
        {"no tool",
         refresh(std::nullopt),
         false,
         idle,
         "old",
         true,
         {{{"-", false},
           {"Last Backup initiated: -", false},
           {"Next", false},
           {"five", true},
           {"six", true}}},
         flush},
        {"idle, never backed up",
         refresh(idleStatus),
         true,
         idle,
         "Create Backup now",
         true,
         {{{"No Backup running", false},
           {"Last Backup initiated: -", false},
           {"Next", false},
           {"five", true},
           {"six", true}}},
         flush},
        {"idle, no schedule yet",
         refresh(idleStatus, std::nullopt, lastYear),
         true,
         idle,
         "Create Backup now",
         true,
         {{{"No Backup running", false},
           {"Last Backup initiated: a date", false},
           {"four", true},
           {"five", true},
           {"six", true}}},
         flush},
        {"stopping",
         refresh(StatusDictionary{.Status = "Stopping"}),
         false,
         busy,
         "Backup stopping...",
         false,
         {{{"Backup stopping...", false}, three, {"four", true}, five, {"six", true}}},
         {}},
        {"unknown status",
         refresh(StatusDictionary{.Status = "NoScript?"}),
         false,
         idle,
         "old",
         false,
         {{two, three, four, five, six}},
         {}},
        {"running, no phase",
         refresh(withoutPhase),
         true,
         busy,
         cancel.c_str(),
         true,
         {{two, three, four, five, six}},
         {}},
        {"running, unknown phase",
         refresh(runningIn("SizingChanges")),
         true,
         busy,
         cancel.c_str(),
         true,
         {{two, three, four, five, six}},
         {}},
        {"starting",
         refresh(runningIn("Starting")),
         true,
         busy,
         cancel.c_str(),
         true,
         {{{"Starting Backup ...", false}, three, four, five, six}},
         {}},
        {"mounting",
         refresh(runningIn("MountingBackupVol")),
         true,
         busy,
         cancel.c_str(),
         true,
         {{{"Mounting Backup Volume ...", false}, three, {"four", true}, five, {"six", true}}},
         {}},
        {"copying",
         refresh(runningIn("Copying", 0.4567, counters)),
         true,
         busy,
         cancel.c_str(),
         true,
         {{{"Copying Data ...", false},
           {"Progress: 45 %", false},
           {"Files Copied: 10 of 100", false},
           {"Data Copied: <1000> of <5000>", false},
           {"Time Remaining: 120 Seconds", false}}},
         {{Kind::SetFilesCopied, 10}, {Kind::SetBytesCopied, 1000}}},
        {"copying, nothing known",
         refresh(runningIn("Copying", -1, {{"TimeRemaining", -1}})),
         true,
         busy,
         cancel.c_str(),
         true,
         {{{"Copying Data ...", false},
           three,
           {"Files Copied: 0 of 0", false},
           {"Data Copied: <0> of <0>", false},
           six}},
         {{Kind::SetFilesCopied, 0}, {Kind::SetBytesCopied, 0}}},
        {"copying, no progress",
         refresh(withoutProgress),
         true,
         busy,
         cancel.c_str(),
         true,
         {{{"Copying Data ...", false}, {"Progress: 28 %", false}, {"four", true}, five, {"six", true}}},
         {}},
        {"finishing",
         refresh(runningIn("Finishing", 1, counters)),
         true,
         busy,
         cancel.c_str(),
         true,
         {{{"Finishing ...", false},
           {"Files Copied: 100", false},
           {"Data Copied: <5000>", false},
           five,
           {"six", true}}},
         {}},
        {"cleaning up, no progress",
         refresh(runningIn("ThinningPostBackup")),
         true,
         busy,
         cancel.c_str(),
         true,
         {{{"Cleaning Up ...", false},
           {"Files Copied: 0", false},
           {"Data Copied: <0>", false},
           five,
           {"six", true}}},
         {}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.update.enable, row.enable) << row.name;
        EXPECT_EQ(row.update.state.icons, row.icons) << row.name;
        EXPECT_EQ(row.update.state.backupTitle, row.backupTitle) << row.name;
        EXPECT_EQ(row.update.state.backupEnabled, row.backupEnabled) << row.name;
        EXPECT_EQ(row.update.statistics, row.calls) << row.name;
        for (std::size_t i = 0; i < row.lines.size(); ++i) {
            EXPECT_EQ(row.update.state.lines[i].title, row.lines[i].title) << row.name << ", line " << i + 2;
            EXPECT_EQ(row.update.state.lines[i].hidden, row.lines[i].hidden)
                << row.name << ", line " << i + 2;
        }
    }
}

TEST(StatusMenu, PercentageIsTruncatedNotRounded) {
    const std::pair<plist::Value, const char*> rows[] = {
        {0.29, "Progress: 28 %"},     {0.57, "Progress: 56 %"},
        {0.58, "Progress: 57 %"},     {1.0, "Progress: 100 %"},
        {0, "Progress: 0 %"},         {"0.5", "Progress: 50 %"},
        {"3.8e-05", "Progress: 0 %"}, {"none", "Progress: 0 %"},
        {true, "Progress: 100 %"},    {1e300, "Progress: 9223372036854775807 %"},
    };
    for (const auto& [percent, title] : rows)
        EXPECT_EQ(refresh(runningIn("Copying", percent)).state.lines[1], (MenuLine{title, false}));
    for (const plist::Value& unknown : {plist::Value(-1), plist::Value(-1.0), plist::Value("-1")})
        EXPECT_EQ(refresh(runningIn("Copying", unknown)).state.lines[1], before().lines[1]);
}

TEST(StatusMenu, HidingStartsAtALineAndNeverShows) {
    const std::pair<std::int64_t, int> rows[] = {{2, 5}, {3, 4}, {6, 1}, {1, 0}, {7, 0}, {0, 0}, {-1, 0}};
    for (const auto& [line, hiddenCount] : rows) {
        StatusMenuState state;
        hideUnusedStatusLines(state, line);
        for (std::size_t i = 0; i < state.lines.size(); ++i)
            EXPECT_EQ(state.lines[i].hidden, hiddenCount > 0 && i + 2 >= static_cast<std::size_t>(line))
                << line;
    }
}

} // namespace
} // namespace orvello
