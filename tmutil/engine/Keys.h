#pragma once

#include "tmutil/Result.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvello::tmutil {

/// The keys of the repositories: files with one line, a password, that only the user can read, in one folder.
/// A key stays when its destination is removed, as nothing else opens the backups that are there.
class Keys {
  public:
    explicit Keys(const std::string& configurationFolder)
        : folder_(configurationFolder + "/keys") {}

    /// The file of a repository's key, by the repository's identifier; it need not exist.
    std::string path(const std::string& repositoryId) const;
    /// All key files, those of no repository yet included.
    std::vector<std::string> all() const;

    /// Makes a file with a new key of 256 random bits, or with the given one; its path.
    Result<std::string> make() const;
    Result<std::string> make(std::string_view key) const;
    /// Gives a key file that belongs to no repository yet its place. One that already has it stays.
    Failure assign(const std::string& file, const std::string& repositoryId) const;

    /// Keeps what the environment says that restic needs to reach stores (such as AWS_ACCESS_KEY_ID) for
    /// later runs; those variables are restic's, see "Environment Variables" in its manual. Nothing is
    /// changed when the environment has none of them.
    Failure keepCredentials(const std::string& repositoryId) const;
    /// What was kept, as NAME=VALUE.
    std::vector<std::string> credentials(const std::string& repositoryId) const;

  private:
    std::string folder_;
};

} // namespace orvello::tmutil
