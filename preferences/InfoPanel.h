#pragma once

#include "platform/plist/Value.h"

#include <optional>
#include <string>

namespace orvello {

/// What the destination box shows of a destination. All texts are the tool's own, unchanged.
struct DestinationTexts {
    std::string kind;
    std::string image; ///< name of the icon
    std::string name;
    std::string id;
    std::string url; ///< "-" without one
    bool operator==(const DestinationTexts&) const = default;
};

/// What an update changes in the destination box; none of a part leaves that part as it was.
struct DestinationBoxUpdate {
    std::optional<std::string> title;
    std::optional<DestinationTexts> destination; ///< the one that the last backup went to
    bool operator==(const DestinationBoxUpdate&) const = default;
};

/// Chooses from the tool's list, which may be missing or empty, the last destination that carries the mark of
/// the last backup. A kind, name or identifier that it lacks shows as "-".
DestinationBoxUpdate describeDestinations(const std::optional<plist::Array>& destinations);

} // namespace orvello
