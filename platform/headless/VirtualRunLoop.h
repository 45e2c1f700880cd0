#pragma once

#include "platform/Clock.h"
#include "platform/RunLoop.h"

namespace orvello::headless {

/// The machine's two clocks and the run loop on them. Time moves only when it is told to.
class VirtualRunLoop : public RunLoop, public Clock {
  public:
    explicit VirtualRunLoop(Date start)
        : wallStart_(start) {}

    Date now() const override;
    Uptime uptime() const override { return uptime_; }

    /// Lets time pass with the loop running: from deadline to deadline in order. An action that itself takes
    /// time may make it end later than asked for. Actions may call it, as a nested loop does.
    void advance(std::chrono::nanoseconds duration);
    /// Lets time pass without the loop, as a call that blocks does.
    void block(std::chrono::nanoseconds duration) { uptime_ += duration; }
    /// Lets the wall clock go on alone.
    void sleep(std::chrono::nanoseconds duration);
    void setWallClock(Date date);
    /// Nothing fires any more; the clocks still go.
    void stop() { stopped_ = true; }

  private:
    void wakeAt(std::optional<Uptime> time) override { wake_ = time; }

    Uptime uptime_ = std::chrono::hours(1);
    Uptime wallStartUptime_ = uptime_;
    Date wallStart_;
    std::optional<Uptime> wake_;
    bool stopped_ = false;
};

} // namespace orvello::headless
