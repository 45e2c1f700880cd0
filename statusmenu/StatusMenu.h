#pragma once

#include "platform/Date.h"
#include "timemachine/BackupStatus.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Maps what the tool is doing to the entries at the top of the status menu.
namespace orvello {

struct MenuLine {
    std::string title;
    bool hidden = false;
    bool operator==(const MenuLine&) const = default;
};

enum class IconPair { Idle, Busy };

/// The six entries and the icon. What a refresh does not mention keeps its title and visibility.
struct StatusMenuState {
    std::string backupTitle; ///< of the item that starts or cancels a backup; tells what a click on it does
    bool backupEnabled = false;
    std::array<MenuLine, 5> lines; ///< status lines 2 to 6
    IconPair icons = IconPair::Idle;
    bool operator==(const StatusMenuState&) const = default;
};

/// The backup item's title while a click on it cancels the running backup.
inline constexpr std::string_view cancelBackupTitle = "Cancel currently running Backup";

/// A call that a refresh makes to the copy statistics.
struct StatisticsCall {
    enum class Kind { SetFilesCopied, SetBytesCopied, Flush };
    Kind kind = Kind::Flush;
    std::int64_t count = 0;
    bool operator==(const StatisticsCall&) const = default;
};

struct StatusMenuInput {
    std::optional<StatusDictionary> status; ///< none while the tool is missing
    std::optional<std::string> nextBackup;  ///< the next backup's line; none before the scheduler's first run
    Date lastBackup;                        ///< the never date for none
    std::function<std::string(Date)> dateText;
    std::function<std::string(std::int64_t)> byteText;
};

struct StatusMenuUpdate {
    StatusMenuState state;
    bool enable = false; ///< whether the backup item can be chosen
    std::vector<StatisticsCall> statistics;
};

StatusMenuUpdate mapStatusMenu(const StatusMenuInput& input, StatusMenuState current);

/// Hides the status lines from that number to 6; a number outside 2 to 6 hides none.
void hideUnusedStatusLines(StatusMenuState& state, std::int64_t line);

} // namespace orvello
