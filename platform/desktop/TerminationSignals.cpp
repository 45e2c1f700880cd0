#include "platform/desktop/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace orvello {

namespace {

constexpr std::array terminationSignals{SIGTERM, SIGINT, SIGHUP};
volatile std::sig_atomic_t writeEnd = -1;

void wakeEventLoop(int /*signal*/) {
    const int error = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(writeEnd, &byte, 1);
    errno = error;
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> handler) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // the signals keep their default action, which ends the program too
    readEnd_ = ends[0];
    writeEnd = ends[1];
    notifier_ = std::make_unique<QSocketNotifier>(readEnd_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this, handler = std::move(handler)] {
                         // Nothing is read: whoever asks the descriptor later on learns of the signal, too.
                         notifier_->setEnabled(false);
                         handler();
                     });
    for (const int signal : terminationSignals) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = wakeEventLoop;
        action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
        sigaction(signal, &action, nullptr);
    }
}

TerminationSignals::~TerminationSignals() {
    if (!notifier_)
        return;
    for (const int signal : terminationSignals) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == wakeEventLoop)
            std::signal(signal, SIG_DFL);
    }
    notifier_.reset();
    close(readEnd_);
    close(writeEnd);
    writeEnd = -1;
}

} // namespace orvello
