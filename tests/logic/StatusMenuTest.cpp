#include "statusmenu/StatusMenu.h"

#include "settings/SettingsKeys.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;
using Kind = StatisticsCall::Kind;

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

/// The whole update in one line; what is hidden or switched off stands in parentheses.
std::string shown(const StatusMenuUpdate& update) {
    const auto text = [](const std::string& title, bool on) { return on ? title : "(" + title + ")"; };
    const auto& state = update.state;
    auto all = text(state.icons == IconPair::Busy ? "busy " : "idle ", update.enable) +
               text(state.backupTitle, state.backupEnabled);
    for (const auto& line : state.lines)
        all += " | " + text(line.title, !line.hidden);
    for (const auto& call : update.statistics)
        all += call.kind == Kind::Flush            ? " flush"
               : call.kind == Kind::SetFilesCopied ? " files " + std::to_string(call.count)
                                                   : " bytes " + std::to_string(call.count);
    return all;
}

TEST(StatusMenu, EachStatusSetsItsRow) {
    const StatusDictionary idle{.Status = "Idle"};
    auto withoutPhase = runningIn("");
    withoutPhase.BackupPhase.reset();
    auto withoutProgress = runningIn("Copying", "0.29"); // 28.99… of a hundred
    withoutProgress.Progress.reset();
    const auto running = "busy " + std::string(cancelBackupTitle) + " | ";
    const std::pair<StatusMenuUpdate, std::string> rows[] = {
        {refresh(std::nullopt), "(idle )old | - | Last Backup initiated: - | Next | (five) | (six) flush"},
        {refresh(idle), "idle Create Backup now | No Backup running | Last Backup initiated: - | Next | "
                        "(five) | (six) flush"},
        {refresh(idle, std::nullopt, neverDate() + 1s),
         "idle Create Backup now | No Backup running | Last Backup initiated: a date | (four) | (five) | "
         "(six) flush"},
        {refresh(idle, "Next", neverDate(), StatusMenuState()),
         "idle Create Backup now | No Backup running | Last Backup initiated: - | Next | () | () flush"},
        {refresh(StatusDictionary{.Status = "Stopping"}),
         "(busy )(Backup stopping...) | Backup stopping... | (three) | (four) | (five) | (six)"},
        {refresh(withoutPhase), running + "two | (three) | four | (five) | six"},
        {refresh(runningIn("SizingChanges")), running + "two | (three) | four | (five) | six"},
        {refresh(runningIn("Starting")), running + "Starting Backup ... | (three) | four | (five) | six"},
        {refresh(runningIn("MountingBackupVol")),
         running + "Mounting Backup Volume ... | (three) | (four) | (five) | (six)"},
        {refresh(runningIn("Copying", 0.4567, counters)),
         running + "Copying Data ... | Progress: 45 % | Files Copied: 10 of 100 | Data Copied: <1000> of "
                   "<5000> | Time Remaining: 120 Seconds files 10 bytes 1000"},
        {refresh(runningIn("Copying", -1, {{"TimeRemaining", -1}})),
         running + "Copying Data ... | (three) | Files Copied: 0 of 0 | Data Copied: <0> of <0> | six "
                   "files 0 bytes 0"},
        {refresh(withoutProgress), running + "Copying Data ... | Progress: 28 % | (four) | (five) | (six)"},
        {refresh(runningIn("Finishing", 1, counters)),
         running + "Finishing ... | Files Copied: 100 | Data Copied: <5000> | (five) | (six)"},
        {refresh(runningIn("ThinningPostBackup")),
         running + "Cleaning Up ... | Files Copied: 0 | Data Copied: <0> | (five) | (six)"},
    };
    for (const auto& [update, expected] : rows)
        EXPECT_EQ(shown(update), expected);
}

} // namespace
} // namespace orvello
