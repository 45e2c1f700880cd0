#pragma once

#include "tmutil/Folders.h"
#include "tmutil/backup/Launch.h"

#include <optional>
#include <string>

namespace orvello::tmutil {

/// What is asked of a backup.
struct BackupOrder {
    std::string destination; ///< its ID; empty: the one whose turn it is
    /// How long the caller listens and shows the user what goes wrong; none: no user watches it.
    std::optional<Listen> watched;
};

/// Makes one backup in this process: from taking the lock to thinning. Whatever becomes of it is in the
/// history, in the system log and, when it failed and no caller tells a user, on the desktop. SIGTERM, SIGINT
/// and SIGHUP end it cleanly.
void makeBackup(const Folders& folders, const BackupOrder& order, Reporter& reporter);

} // namespace orvello::tmutil
