#pragma once

#include "tests/controller/Program.h"
#include "tests/decade/ZoneHistory.h"

#include <set>
#include <string>

namespace orvello {

struct Schedule {
    std::int64_t interval = -1;
    std::string andOr = "and";
    std::int64_t idleTime = -1;
    std::int64_t time1 = -1;
    std::int64_t time2 = -1;
};

/// The program's life in a zone with a schedule, of which at least one hour is set. At every tick it is
/// compared with what the zone's history and the schedule's rules lead to expect: whether one backup is
/// started or none, where the countdown stands, when the next backup is said to come and in which words. A
/// backup takes a minute. The user is away from 22:00 to 8:00 UTC, and else at work.
class Life {
  public:
    Life(const ZoneHistory& zone, Schedule schedule, Date from, Date to);

    /// Lives until a time, or the first failure.
    void tickUntil(Date date);
    /// Sleeps until the last whole minute before the first tick at or behind the date.
    void sleepBefore(Date date);
    Date now() const { return program_.machine.now(); }
    /// The instants at which a fixed hour is due.
    const std::set<Date>& dueInstants() const { return due_; }

  private:
    void check();
    /// What is expected at a tick; moves the expected countdown on.
    struct Expectation {
        std::size_t starts = 0;
        std::int64_t countdown = -1;
        std::optional<std::int64_t> minutes; ///< until the next backup; none where idleness has a say in it
    };
    Expectation expect();
    /// The first due instant that is not a minute ago.
    Date nextDue() const { return *due_.upper_bound(now() - std::chrono::minutes(1)); }
    std::int64_t minutesUntilDue() const;
    std::string expectedText(Date next) const;
    std::string here() const;

    const ZoneHistory& zone_;
    Schedule schedule_;
    std::set<Date> due_;
    std::int64_t sinceReset_ = 0; ///< ticks since the countdown was last set to the interval
    Program program_;
};

} // namespace orvello
