#include "tmutil/backup/StopSignals.h"

#include <csignal>
#include <poll.h>
#include <sys/signalfd.h>

namespace orvello::tmutil {

StopSignals::StopSignals() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        ::signal(signal, SIG_DFL); // one that the caller ignores would never come
        ::sigaddset(&signals, signal);
    }
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    signals_ = Descriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

bool StopSignals::requested() const {
    pollfd entry{signals_.get(), POLLIN, 0};
    return ::poll(&entry, 1, 0) == 1;
}

} // namespace orvello::tmutil
