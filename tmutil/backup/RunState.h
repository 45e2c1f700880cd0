#pragma once

#include "platform/plist/Value.h"
#include "platform/posix/Descriptor.h"
#include "tmutil/Folders.h"
#include "tmutil/Result.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace orvello::tmutil {

/// The right of one process of the user's to make a backup: a lock that ends with the process that holds it,
/// however that ends.
class BackupLock {
  public:
    explicit BackupLock(const Folders& folders);

    /// Takes the lock and notes who holds it. False when another process holds it, or there is a problem.
    bool acquire();
    /// The process that holds it, 0 for the moment in which that has not noted itself yet; none when nobody
    /// does. Asking takes nothing, makes nothing and disturbs nobody. One who asked before the first lock
    /// ever was taken does not see it.
    std::optional<pid_t> holder() const;
    /// Why the lock could be taken by nobody; none when it was taken, or another process holds it.
    Failure problem() const;

  private:
    std::string folder_;
    Descriptor file_;
    int error_ = 0;
};

/// What the running backup says of itself. It is read far more often than it changes. It is left behind at
/// the end, when nobody believes it any more: without it the holder of the lock would seem to be starting
/// until it lets go.
void writeRunState(const Folders& folders, const plist::Dictionary& state);

/// The answer to "status": what the running backup says, else that none runs and, after a failure, why the
/// last one did.
plist::Dictionary statusAnswer(const Folders& folders);

} // namespace orvello::tmutil
