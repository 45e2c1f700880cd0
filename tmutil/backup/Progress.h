#pragma once

#include "platform/plist/Value.h"
#include "tmutil/engine/ResticOutput.h"

namespace orvello::tmutil {

/// How far a run has come, as it is shown: no count runs backwards or passes its total, whatever restic
/// reports.
class Progress {
  public:
    void take(const CopyStatus& status);
    void take(const CopySummary& summary);

    /// Whether the first data has been read.
    bool copying() const { return shown_.files > 0 || shown_.bytes > 0; }
    /// Whether all that there is has been read, which two reports in a row say.
    bool allRead() const { return totalsKnown_ && completeReports_ >= 2; }
    /// From 0 to 1, by bytes; 0 as long as restic looks for files and the totals grow, -1 before copying.
    double percent() const { return percent_; }
    const CopyStatus& shown() const { return shown_; }
    /// The dictionary "Progress" of a status answer.
    plist::Dictionary dictionary() const;

  private:
    void raise(std::int64_t files, std::int64_t totalFiles, std::int64_t bytes, std::int64_t totalBytes);

    CopyStatus shown_;
    double percent_ = -1;
    bool totalsKnown_ = false; ///< restic tells the remaining time once it has seen all files
    int completeReports_ = 0;
};

} // namespace orvello::tmutil
