#pragma once

#include "tmutil/Result.h"
#include "tmutil/engine/Restic.h"

#include <string>

namespace orvello::tmutil {

/// What to copy out of a backup, and to where.
struct RestoreOrder {
    std::string snapshot; ///< its identifier
    std::string path;     ///< absolute, as it was backed up; empty for the whole backup
    std::string target;   ///< the absolute path that the item gets; nothing must be there yet
};

/// Copies an item out of a backup: into a folder beside the target first, and to the target when it is
/// complete, so that the target is never half of it. A problem tells what is missing; the items that could be
/// restored are there then, when `partly` says so.
struct Restored {
    Failure problem;
    bool partly = false;
};
Restored restoreItem(const Restic& restic, const RestoreOrder& order);

} // namespace orvello::tmutil
