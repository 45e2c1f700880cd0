#pragma once

#include "platform/Log.h"
#include "tmutil/Folders.h"
#include "tmutil/records/Bookkeeping.h"
#include "tmutil/records/History.h"

#include <string>

namespace orvello::tmutil {

/// The history and the bookkeeping while a backup runs, whose process alone changes them. What cannot be
/// saved is logged.
class RunBooks {
  public:
    /// Both are to outlive it. The bookkeeping is loaded.
    RunBooks(const Folders& folders, Log& log);

    /// Enters runs that a kill or a power cut ended, and that have told nobody, into the history as failed.
    void noteUnfinishedRuns(Date now);
    /// Marks a backup to a destination as begun. It is not to go on when that cannot be saved: it would leave
    /// no trace if it were killed.
    Failure begin(const std::string& destination, Date start);
    /// Enters a run that has ended into the history, which is returned, and the log.
    History close(const Run& run);

    const std::string& lastDestination() const { return content_.lastDestination; }
    DestinationRecord& record(const std::string& destination) { return content_.destinations[destination]; }
    /// Saves the records as they are now.
    void save();

  private:
    const Folders& folders_;
    Log& log_;
    Bookkeeping content_;
};

} // namespace orvello::tmutil
