#pragma once

#include <optional>
#include <string>

namespace orvello::tmutil {

/// The user's folders for what the tool keeps, absolute; they need not exist yet.
struct Folders {
    std::string home;
    std::string configuration; ///< destinations, sources, exclusions and keys
    std::string state;         ///< history, bookkeeping and the lock of the running backup
    std::string runtime;       ///< what the running backup says of itself
};

/// The folders "tmutil" below the XDG folders of the user; without a runtime folder, the state folder serves
/// for it. None when the user has no home folder.
std::optional<Folders> userFolders();

/// Makes the folder and those above it that are missing, for the user alone. Failures show when it is used.
void makeFolder(const std::string& path);

} // namespace orvello::tmutil
