#pragma once

#include "tmutil/records/Configuration.h"

#include <string>

namespace orvello::tmutil {

/// A destination and where it can be reached now.
struct ChosenDestination {
    Destination destination;
    std::string folder;  ///< Local: its folder as it is mounted now; empty for Network
    std::string address; ///< what restic calls the repository
};

/// The destination with that ID, which must be present; without an ID the present one that follows the last
/// used one, so that several take turns.
Result<ChosenDestination> chooseDestination(const Configuration& configuration, const std::string& id,
                                            const std::string& lastUsed);

} // namespace orvello::tmutil
