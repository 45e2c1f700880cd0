#pragma once

#include "platform/Date.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orvello::tmutil {

// What restic prints, as documented under "Scripting" in its manual, with --json. Everything here is total:
// any bytes are read, in linear time, as something or as nothing. Counts are held within 0 and the largest
// integer.

/// "status": how far a backup has come. The totals grow until restic has seen all files.
struct CopyStatus {
    std::int64_t files = 0;
    std::int64_t totalFiles = 0;
    std::int64_t bytes = 0;
    std::int64_t totalBytes = 0;
    std::int64_t errors = 0; ///< files and folders that could not be read
    std::optional<std::chrono::seconds> remaining;
    bool operator==(const CopyStatus&) const = default;
};

/// "summary": the backup is complete.
struct CopySummary {
    std::int64_t files = 0;
    std::int64_t bytes = 0;
    std::int64_t added = 0; ///< bytes of new data in the repository
    std::string snapshot;   ///< its identifier
    bool operator==(const CopySummary&) const = default;
};

using BackupLine = std::variant<std::monostate, CopyStatus, CopySummary>;

/// One line of a backup's output; nothing for a line of another kind.
BackupLine readBackupLine(std::string_view line);

/// A backup in the repository.
struct Snapshot {
    std::string id; ///< in full
    Date time{};
    std::chrono::minutes offset{}; ///< of the local time from UTC where it was made
    std::string host;
    std::string user;
    bool operator==(const Snapshot&) const = default;
};

/// The answer to "snapshots", the oldest first; entries without identifier or time are left out. None when it
/// is no list.
std::optional<std::vector<Snapshot>> readSnapshots(std::string_view output);

/// The repository's identifier in the answer to "cat config"; empty when there is none.
std::string readRepositoryId(std::string_view output);

/// Time in the form of RFC 3339, with its offset from UTC.
struct ZonedTime {
    Date time{};
    std::chrono::minutes offset{};
    bool operator==(const ZonedTime&) const = default;
};
std::optional<ZonedTime> readTime(std::string_view text);

/// Why restic did not do what it was asked to.
enum class Refusal { Other, NoRepository, WrongKey, Locked, NoSpace };
Refusal readRefusal(int status, std::string_view errors);
/// How many files and folders the errors of a backup name that could not be read.
std::int64_t countUnreadable(std::string_view errors);
/// What restic says of a failure, in one line: that of the last "Fatal:", else the last one there is. Empty
/// when there is none.
std::string readReason(std::string_view errors);

} // namespace orvello::tmutil
