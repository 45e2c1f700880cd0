#pragma once

#include "tmutil/engine/ResticOutput.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace orvello::tmutil {

/// How backups are called on the command line: DESTINATION/HOST/YYYY-MM-DD-HHMMSS, with the local time of the
/// place where each was made. Where several would be called the same (an hour that the clock repeats), the
/// start of the identifier follows. The destination is its folder or address as it is displayed; the names
/// are in the order of the snapshots.
std::vector<std::string> backupNames(const std::string& destination, const std::vector<Snapshot>& snapshots);

/// An item in a backup, as the user names it: BACKUP/PATH.
struct BackupItem {
    std::size_t backup = 0; ///< its position in the names
    std::string path; ///< absolute, without ".", ".." and a slash at its end; empty for the whole backup
};

/// The item that the text means; none when no backup has such a name.
std::optional<BackupItem> findBackupItem(const std::string& text, const std::vector<std::string>& names);

} // namespace orvello::tmutil
