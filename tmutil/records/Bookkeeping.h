#pragma once

#include "platform/Date.h"
#include "tmutil/Result.h"

#include <map>
#include <optional>
#include <string>

namespace orvello::tmutil {

/// What the tool remembers of its work on one destination.
struct DestinationRecord {
    std::optional<Date> unfinishedSince; ///< a backup began and has not been closed yet
    bool needsRepair = false;            ///< one did not end by itself: what it uploaded is not listed yet
    std::optional<Date> lastPrune;
    bool forgotten = false; ///< backups were dropped since then, their data is still there
};

struct Bookkeeping {
    std::string lastDestination; ///< the ID of the one that was used last; empty for none
    std::map<std::string, DestinationRecord> destinations; ///< by ID
};

/// The bookkeeping in the folder; empty where there is none or it cannot be read, as it can be made anew. To
/// be changed only by the running backup.
Bookkeeping loadBookkeeping(const std::string& folder);
Failure saveBookkeeping(const std::string& folder, const Bookkeeping& bookkeeping);

} // namespace orvello::tmutil
