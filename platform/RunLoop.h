#pragma once

#include "platform/Date.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace orvello {

/// In which states of the run loop a timer fires. Default: only while no menu is tracked and no alert is
/// modal. Common: always, nested inside menus and alerts too.
enum class RunLoopMode { Default, Common };

/// A repeating timer. Its fire dates are fixed when it is created: one interval later and every further
/// interval. It fires only while it is scheduled on a run loop and not invalidated.
class Timer {
  public:
    Timer(Uptime created, std::chrono::milliseconds interval, std::function<void()> action);

    /// Takes the timer off its run loop for good; it never fires again, also not later in the current turn.
    void invalidate() { valid_ = false; }
    bool isValid() const { return valid_; }
    bool isScheduled() const { return scheduled_ && valid_; }

  private:
    friend class RunLoop;

    std::chrono::nanoseconds interval_;
    std::function<void()> action_;
    Uptime next_;
    std::uint64_t order_ = 0;
    RunLoopMode mode_ = RunLoopMode::Default;
    bool valid_ = true;
    bool scheduled_ = false;
};

/// The main run loop's timers and deferred work; one thread only. Both back ends share this class and supply
/// the clock and the one wake-up it needs.
///
/// A timer that is late, because it was scheduled late, because the loop was busy, or because its mode had to
/// wait, fires once and then at the next of its dates that lies ahead: missed dates are not made up. Dates
/// run on uptime, so a sleep of the computer delays them and makes no burst. Timers due together fire in the
/// order of their dates, equal dates in the order in which the timers were scheduled. An action may open a
/// menu or an alert; common-mode timers, its own included, then fire nested inside it.
class RunLoop {
  public:
    virtual ~RunLoop() = default;
    RunLoop() = default;
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// A new timer that is not scheduled. The interval must be positive.
    std::shared_ptr<Timer> makeTimer(std::chrono::milliseconds interval, std::function<void()> action);

    /// Schedules the timer; the loop holds it until it is invalidated. A timer that is already scheduled, or
    /// was invalidated, is left as it is.
    void addTimer(const std::shared_ptr<Timer>& timer, RunLoopMode mode);

    /// Runs the work once after the current event has been handled and before the loop sleeps again, in any
    /// mode.
    void performSoon(std::function<void()> work);

    /// Brackets the time in which a menu is tracked or an alert is modal; they nest. Default-mode timers wait
    /// in between, and those that came due fire when the outermost bracket ends.
    void beginTracking();
    void endTracking();
    bool isTracking() const { return tracking_ > 0; }

  protected:
    /// The current time on the clock that fire dates are measured by.
    virtual Uptime uptime() const = 0;
    /// Asks the back end to call runPending at that time, at once if it has passed; nothing cancels the
    /// request. Replaces the request before.
    virtual void wakeAt(std::optional<Uptime> time) = 0;

    /// Runs the deferred work and the timers that are due now. Back ends call it when the wake-up has come.
    void runPending();

  private:
    std::shared_ptr<Timer> nextDue(Uptime now) const;
    bool mayFire(const Timer& timer) const;
    void rearm();

    std::vector<std::shared_ptr<Timer>> timers_;
    std::vector<std::function<void()>> soon_;
    std::uint64_t scheduledCount_ = 0;
    int tracking_ = 0;
};

/// Holds a run loop in tracking for its own life.
class TrackingScope {
  public:
    explicit TrackingScope(RunLoop& runLoop)
        : runLoop_(runLoop) {
        runLoop_.beginTracking();
    }
    ~TrackingScope() { runLoop_.endTracking(); }
    TrackingScope(const TrackingScope&) = delete;
    TrackingScope& operator=(const TrackingScope&) = delete;

  private:
    RunLoop& runLoop_;
};

} // namespace orvello
