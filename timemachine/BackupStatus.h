#pragma once

#include "platform/plist/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvello {

/// What the tool is doing, condensed from its answer. The keys are those of the answer; values other than the
/// status are as the tool gave them.
struct StatusDictionary {
    /// "Idle", "Running" or "Stopping".
    std::string Status;
    /// With "Running" only, taken over in this order up to the first that the answer lacks.
    std::optional<plist::Value> BackupPhase; ///< the phase's name, a string
    std::optional<plist::Value> Percent;  ///< a fraction of 1, -1 while unknown; a number or a numeric string
    std::optional<plist::Value> Progress; ///< a dictionary of counters

    bool operator==(const StatusDictionary&) const = default;
};

/// Reads the output of the tool's verb status, an XML property list. An answer that has no "Running" is read
/// a second time with an integer put behind every "DateOfStateChange" key, which some versions of the tool
/// leave without a value. Whatever cannot be read is "Idle".
StatusDictionary readBackupStatus(std::string_view output);

} // namespace orvello
