#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace orvello {

/// Turns the first signal that asks the program to end (SIGTERM, SIGINT, SIGHUP) into a call from the event
/// loop. A signal that the program was started to ignore stays ignored. A second signal of the same kind ends
/// the process at once, so that a busy main thread cannot hold it. At most one object exists at a time.
class TerminationSignals {
  public:
    explicit TerminationSignals(std::function<void()> handler);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Readable for good from when a signal has come; -1 for none.
    int descriptor() const { return readEnd_; }

  private:
    std::unique_ptr<QSocketNotifier> notifier_;
    int readEnd_ = -1;
};

} // namespace orvello
