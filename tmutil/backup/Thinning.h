#pragma once

#include "platform/Date.h"

#include <chrono>
#include <cstddef>
#include <vector>

namespace orvello::tmutil {

/// Which backups to drop, as positions in `times`, which are in ascending order: of those of the last day all
/// but the last of each hour, of those of the last 30 days all but the last of each day, of older ones all
/// but the last of each week, which begins on Monday. Hours, days and weeks are those of the local time,
/// `offset` from UTC. The newest one and those that are in the future of `now` stay: a clock that was wrong
/// must not cost a backup.
std::vector<std::size_t> backupsToDrop(const std::vector<Date>& times, Date now, std::chrono::minutes offset);

} // namespace orvello::tmutil
