#pragma once

#include "tmutil/Folders.h"
#include "tmutil/records/Configuration.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvello::tmutil {

/// What goes into a backup.
struct Selection {
    std::vector<std::string> sources;  ///< absolute paths
    std::vector<std::string> excluded; ///< absolute paths, left out with all that is below them
    std::vector<std::string> patterns; ///< in restic's form, left out wherever they fit
};

/// The user's sources, else the home folder, links resolved, less what the user excludes, the user's caches
/// and trash, and every destination. Folders that are tagged as caches (CACHEDIR.TAG, bford.info/cachedir)
/// are left out as well.
Selection selectionOf(const Configuration& configuration, const Folders& folders);

/// The arguments that make restic back up the selection, after "backup".
std::vector<std::string> selectionArguments(const Selection& selection);

/// The path as a pattern of restic's that fits nothing else.
std::string patternFor(std::string_view path);

/// The absolute path of what the user names, "." and ".." removed, links not followed.
std::string absolutePath(const std::string& path);

/// The absolute path with the links in the folders above it resolved, the item itself left as it is.
std::string resolvedParent(const std::string& path);

/// Whether backups leave the existing or non-existing item at an absolute path out.
bool isExcluded(const std::string& path, const Selection& selection);

} // namespace orvello::tmutil
