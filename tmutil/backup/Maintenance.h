#pragma once

#include "platform/Date.h"
#include "tmutil/engine/Restic.h"
#include "tmutil/records/Bookkeeping.h"

#include <string>
#include <string_view>

namespace orvello {
class Log;
}

namespace orvello::tmutil {

/// The tag of the backups that this tool makes. It lists and drops no others.
inline constexpr std::string_view ownTag = "tmutil";

/// Takes over what a run left behind that did not end by itself: removes the locks of this machine's ended
/// processes, and lists data in the index that was uploaded and not listed yet, so that it need not be
/// uploaded again. Whether that succeeded; what failed is logged.
bool repair(const Restic& restic, Log& log);

/// Drops old backups of the user and machine that made the given one, see backupsToDrop, and, once a day at
/// most, the data that no backup needs any more. `backup` is its identifier or the start of it. Keeps the
/// record; what fails is logged and done the next time. Whether nothing failed.
bool thin(const Restic& restic, const std::string& backup, Date now, DestinationRecord& record, Log& log);

} // namespace orvello::tmutil
