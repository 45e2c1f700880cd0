#pragma once

#include "tmutil/engine/Process.h"
#include "tmutil/engine/ResticOutput.h"

#include <optional>
#include <string>
#include <vector>

namespace orvello::tmutil {

/// Where a repository is and how it is opened.
struct Repository {
    std::string address;                  ///< a folder, or a store as restic writes it ("sftp:host:/path")
    std::string keyFile;                  ///< the file with its password
    std::vector<std::string> credentials; ///< NAME=VALUE for the store, such as AWS_ACCESS_KEY_ID
};

/// The path of the restic program: the first on $PATH, else in the usual folders. None when there is none.
std::optional<std::string> findRestic();

/// restic at work on one repository.
class Restic {
  public:
    Restic(std::string program, Repository repository, StopRequest stop = {})
        : program_(std::move(program))
        , repository_(std::move(repository))
        , stop_(std::move(stop)) {}

    /// Runs restic with these arguments. Address, password and credentials go through the environment, where
    /// other users cannot see them.
    Ended run(const std::vector<std::string>& arguments, const LineHandler& onLine = {}) const;
    const std::string& address() const { return repository_.address; }

  private:
    std::string program_;
    Repository repository_;
    StopRequest stop_;
};

/// What went wrong, for the user: what it was that failed, and restic's own reason.
std::string describeFailure(const std::string& what, const Ended& ended);

} // namespace orvello::tmutil
