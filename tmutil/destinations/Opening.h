#pragma once

#include "tmutil/engine/Keys.h"
#include "tmutil/engine/Restic.h"

#include <functional>
#include <optional>
#include <string>

namespace orvello::tmutil {

/// A repository that is ready for backups.
struct OpenedRepository {
    std::string id;      ///< restic's identifier of it
    std::string keyFile; ///< in its place among the keys
    bool isNew = false;  ///< it was made just now, and its key with it
};

/// Asks for the password of a repository that no known key opens; none when nobody can be asked.
using AskPassword = std::function<std::optional<std::string>()>;

/// Opens the repository at the address with one of the user's keys or the password that is asked for, or
/// makes it where there is none. `folder` is where a repository in a folder is; empty for one in a store.
/// What a failed attempt made is removed; a repository that was made and cannot be read at once stays, and
/// its key with it.
Result<OpenedRepository> openRepository(const std::string& restic, const std::string& address,
                                        const std::string& folder, const Keys& keys, const AskPassword& ask);

} // namespace orvello::tmutil
