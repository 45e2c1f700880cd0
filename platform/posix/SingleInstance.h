#pragma once

#include "platform/posix/Descriptor.h"

#include <string>

namespace orvello {

/// The user's folder for what lives as long as a session: $XDG_RUNTIME_DIR if that is an absolute path to a
/// folder of the user's, else /tmp/orvello-UID, made with mode 0700. Empty when neither is a folder that only
/// the user can write to.
std::string runtimeFolder();

/// Keeps a user from running the program twice at a time: the first instance holds a lock, which ends with
/// its process, and receives the wish of later ones that it come forward.
class SingleInstance {
  public:
    explicit SingleInstance(const std::string& folder = runtimeFolder());

    /// Whether this process is to run: it holds the lock now, or there is no folder or no locking to tell,
    /// where a second instance is better than none.
    bool acquire();

    /// Readable when another instance has sent a request; none (-1) without the lock.
    int descriptor() const { return socket_.get(); }
    /// Takes all requests that have come; whether there were any.
    bool takeRequests();

    /// Asks the instance that holds the lock to come forward. Whether the request was delivered; never waits.
    bool askOtherToComeForward();

  private:
    void listen();

    Descriptor folder_;
    Descriptor lock_;
    Descriptor socket_;
};

} // namespace orvello
