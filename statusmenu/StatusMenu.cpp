#include "statusmenu/StatusMenu.h"

#include "settings/SettingsKeys.h"

#include <fmt/format.h>

namespace orvello {

namespace {

using Kind = StatisticsCall::Kind;

/// One refresh of the entries, row by row.
class Mapping {
  public:
    Mapping(const StatusMenuInput& input, StatusMenuState current)
        : input_(input) {
        update_.state = std::move(current);
    }

    StatusMenuUpdate run() {
        if (!input_.status)
            noScript();
        else if (input_.status->Status == "Idle")
            idle();
        else if (input_.status->Status == "Running")
            running(*input_.status);
        else if (input_.status->Status == "Stopping")
            stopping();
        return std::move(update_);
    }

  private:
    MenuLine& line(int number) { return update_.state.lines.at(static_cast<std::size_t>(number - 2)); }

    void setTitle(int number, std::string title) { line(number).title = std::move(title); }
    void show(int number, std::string title) { line(number) = {std::move(title), false}; }
    void hideFrom(int number) { hideUnusedStatusLines(update_.state, number); }

    void noScript() {
        update_.state.icons = IconPair::Idle;
        update_.state.backupEnabled = true;
        setTitle(2, "-");
        lastAndNextBackup();
    }

    void idle() {
        update_.state.icons = IconPair::Idle;
        update_.state.backupTitle = "Create Backup now";
        update_.state.backupEnabled = true;
        update_.enable = true;
        setTitle(2, "No Backup running");
        lastAndNextBackup();
    }

    void lastAndNextBackup() {
        const bool never = input_.lastBackup == neverDate();
        show(3, "Last Backup initiated: " + (never ? "-" : input_.dateText(input_.lastBackup)));
        if (input_.nextBackup) {
            show(4, *input_.nextBackup);
            hideFrom(5);
        } else {
            hideFrom(4);
        }
        update_.statistics.push_back({Kind::Flush});
    }

    void running(const StatusDictionary& status) {
        update_.state.icons = IconPair::Busy;
        update_.state.backupTitle = cancelBackupTitle;
        update_.state.backupEnabled = true;
        update_.enable = true;

        const auto* phase = status.BackupPhase ? status.BackupPhase->as<std::string>() : nullptr;
        const auto* progress = status.Progress ? status.Progress->as<plist::Dictionary>() : nullptr;
        if (!phase)
            return;
        if (*phase == "Starting") {
            setTitle(2, "Starting Backup ...");
        } else if (*phase == "Copying") {
            setTitle(2, "Copying Data ...");
            percentage(status);
            copying(progress);
        } else if (*phase == "Finishing") {
            setTitle(2, "Finishing ...");
            totals(progress);
        } else if (*phase == "ThinningPostBackup") {
            setTitle(2, "Cleaning Up ...");
            totals(progress);
        } else if (*phase == "MountingBackupVol") {
            setTitle(2, "Mounting Backup Volume ...");
            hideFrom(3);
        }
    }

    void percentage(const StatusDictionary& status) {
        const double fraction = status.Percent ? plist::doubleValue(&*status.Percent) : 0;
        const plist::Value product = fraction * 100.0;
        const auto percent = plist::integerValue(&product);
        if (percent != -100) // the tool's -1: not known yet
            show(3, fmt::format("Progress: {} %", percent));
    }

    void copying(const plist::Dictionary* progress) {
        if (!progress) {
            hideFrom(4);
            return;
        }
        const auto files = count(progress, "files");
        const auto bytes = count(progress, "bytes");
        show(4, fmt::format("Files Copied: {} of {}", files, count(progress, "totalFiles")));
        show(5, fmt::format("Data Copied: {} of {}", input_.byteText(bytes),
                            input_.byteText(count(progress, "totalBytes"))));
        const auto seconds = count(progress, "TimeRemaining");
        if (seconds >= 0)
            setTitle(6, fmt::format("Time Remaining: {} Seconds", seconds));
        line(6).hidden = false;
        update_.statistics = {{Kind::SetFilesCopied, files}, {Kind::SetBytesCopied, bytes}};
    }

    void totals(const plist::Dictionary* progress) {
        show(3, fmt::format("Files Copied: {}", count(progress, "totalFiles")));
        show(4, "Data Copied: " + input_.byteText(count(progress, "totalBytes")));
        hideFrom(5);
    }

    void stopping() {
        update_.state.icons = IconPair::Busy;
        update_.state.backupTitle = "Backup stopping...";
        update_.state.backupEnabled = false;
        setTitle(2, "Backup stopping...");
        hideFrom(3);
    }

    static std::int64_t count(const plist::Dictionary* progress, std::string_view key) {
        return progress ? plist::integerValue(plist::find(*progress, key)) : 0;
    }

    const StatusMenuInput& input_;
    StatusMenuUpdate update_;
};

} // namespace

StatusMenuUpdate mapStatusMenu(const StatusMenuInput& input, StatusMenuState current) {
    return Mapping(input, std::move(current)).run();
}

void hideUnusedStatusLines(StatusMenuState& state, std::int64_t line) {
    // Positions are unsigned, so a number below 2 lies beyond the last line, too.
    for (auto position = static_cast<std::uint64_t>(line) - 2; position < state.lines.size(); ++position)
        state.lines.at(position).hidden = true;
}

} // namespace orvello
