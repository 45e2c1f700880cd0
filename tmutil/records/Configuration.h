#pragma once

#include "platform/plist/Value.h"
#include "tmutil/Result.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvello::tmutil {

/// A place that backups go to: a restic repository in a folder (Local) or in a store of restic's (Network).
struct Destination {
    enum class Kind { Local, Network };

    std::string id; ///< a UUID in capitals
    Kind kind = Kind::Local;
    std::string name;
    std::string location;         ///< the folder's absolute path, or restic's address of the store
    std::string repositoryFolder; ///< Local: the repository below the folder; empty when it is the folder
    std::string repositoryId;     ///< restic's identifier of the repository, in hexadecimal
    std::string fileSystem;       ///< Local: the UUID of the folder's file system; empty when it has none
    std::string pathOnFileSystem; ///< Local: the folder's path from that file system's mount point

    bool operator==(const Destination&) const = default;
};

/// What the user has chosen.
struct Configuration {
    std::vector<Destination> destinations;
    std::optional<std::vector<std::string>> sources; ///< absolute paths; none: the home folder
    std::vector<std::string> exclusions;             ///< absolute paths

    const Destination* find(std::string_view id) const;
    bool operator==(const Configuration&) const = default;
};

/// Incomplete destinations are left out.
Configuration readConfiguration(const plist::Dictionary& content);
/// Stores the configuration in a dictionary. What it does not tell of stays: other keys, those of a
/// destination included, and the entries that are no complete destination.
void writeConfiguration(const Configuration& configuration, plist::Dictionary& content);

/// The configuration in the folder's "tmutil.plist".
Result<Configuration> loadConfiguration(const std::string& folder);
/// Loads it, lets `edit` change it, and saves it, while no other process does the same.
Failure changeConfiguration(const std::string& folder, const std::function<Failure(Configuration&)>& edit);

} // namespace orvello::tmutil
