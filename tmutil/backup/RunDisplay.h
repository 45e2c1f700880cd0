#pragma once

#include "tmutil/Folders.h"
#include "tmutil/backup/Progress.h"
#include "tmutil/backup/StopSignals.h"
#include "tmutil/destinations/Choice.h"

#include <string>

namespace orvello::tmutil {

/// What the running backup shows of itself to those who ask for the status.
class RunDisplay {
  public:
    /// Both are to outlive it.
    RunDisplay(const Folders& folders, const StopSignals& stop)
        : folders_(folders)
        , stop_(stop) {}

    /// Names where the backup goes, from the next display on.
    void setDestination(const ChosenDestination& chosen);
    /// Shows a phase, by its name in a status answer, and the progress so far.
    void showPhase(const std::string& phase);
    /// Takes a line of restic's and shows what it says, and the phase that follows from it.
    void take(const CopyStatus& status);
    void take(const CopySummary& summary);
    /// Shows the present state once more: whether the backup is to stop may have changed.
    void show() const;

    const CopyStatus& progress() const { return progress_.shown(); }

  private:
    const Folders& folders_;
    const StopSignals& stop_;
    std::string destinationId_;
    std::string mountPoint_;
    std::string phase_;
    Date phaseSince_{};
    Progress progress_;
};

} // namespace orvello::tmutil
