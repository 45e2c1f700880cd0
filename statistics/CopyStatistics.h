#pragma once

#include <cstdint>
#include <optional>

/// Counts what a backup copies from samples of the tool's own counter, which may start again from a lower
/// value during one backup. Works alike for files and for bytes.
namespace orvello {

/// What a sample of the tool's counter changes.
struct CopySample {
    std::int64_t cache = 0; ///< the count since the tool's counter last started again
    /// The banked count to store, set only when the counter has started again.
    std::optional<std::int64_t> banked;
    bool operator==(const CopySample&) const = default;
};

/// Takes a sample; `cache` and `banked` are the values before it.
CopySample takeCopySample(std::int64_t count, std::int64_t cache, std::int64_t banked);

/// The figures of a backup that has ended; cache and banked count start again from 0.
struct ClosedBackup {
    std::int64_t last = 0;
    std::int64_t total = 0;
    bool operator==(const ClosedBackup&) const = default;
};

/// Closes a backup; `total` is the total of the backups before.
ClosedBackup closeBackup(std::int64_t cache, std::int64_t banked, std::int64_t total);

} // namespace orvello
