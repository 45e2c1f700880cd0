#pragma once

#include "platform/Date.h"
#include "tmutil/Result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvello::tmutil {

/// One run of the backup.
struct Run {
    enum class Outcome { Completed, Stopped, Failed };

    Date start{};
    Date end{};
    std::string destination; ///< its ID; empty when the run failed before one was chosen
    Outcome outcome = Outcome::Failed;
    std::string reason;       ///< Failed: why, a sentence
    std::string backup;       ///< Completed: restic's identifier of the snapshot
    std::int64_t files = 0;   ///< looked at
    std::int64_t bytes = 0;   ///< looked at
    std::int64_t added = 0;   ///< bytes of new data in the repository
    std::int64_t skipped = 0; ///< files and folders that could not be read

    bool operator==(const Run&) const = default;
};

/// The last runs, the oldest first.
struct History {
    static constexpr std::size_t maximumRuns = 50;

    std::vector<Run> runs;
    std::optional<Date> lastSuccess;
    std::optional<Date> firstRun;

    /// Appends the run and drops the oldest beyond maximumRuns.
    void add(Run run);
    /// How many runs have failed since the last that completed; those that were stopped do not count.
    int failuresInARow() const;
    bool operator==(const History&) const = default;
};

/// The history in the folder's "history.plist"; empty where there is none or it cannot be read.
History loadHistory(const std::string& folder);
Failure saveHistory(const std::string& folder, const History& history);

/// What the user is told of a failed run.
struct Notice {
    std::string title;
    std::string body;
    bool urgent = false;
    bool operator==(const Notice&) const = default;
};

/// The notice of the history's last run, which has failed. From the third failure in a row, and after a week
/// without a success, it says so and is urgent; a last success in the future of `now` says nothing.
Notice failureNotice(const History& history, Date now);

} // namespace orvello::tmutil
