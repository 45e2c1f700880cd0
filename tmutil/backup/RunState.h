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

    /// Takes the lock and notes who holds it. False when another process holds it, or there is nowhere to
    /// keep it.
    bool acquire();
    /// The process that holds it; none when nobody does. Asking takes nothing and disturbs nobody.
    std::optional<pid_t> holder() const;
    /// Why there is no place for the lock; none when there is.
    Failure problem() const;

  private:
    std::string path_;
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
