#pragma once

#include "platform/plist/Value.h"

#include <chrono>
#include <optional>

namespace orvello::player {

using Seconds = std::chrono::duration<double>;

/// The tool's status while no backup runs.
plist::Dictionary idleStatus();

/// The tool's status during a backup that takes `length` in all, when `elapsed` has passed since its start,
/// and `sinceStop` since somebody asked it to stop; the idle one when it is over.
plist::Dictionary statusOfBackup(Seconds length, Seconds elapsed, std::optional<Seconds> sinceStop);

/// One local destination.
plist::Dictionary destinations();

} // namespace orvello::player
