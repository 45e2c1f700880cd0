#include "platform/RunLoop.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace orvello {

Timer::Timer(Uptime created, std::chrono::milliseconds interval, std::function<void()> action)
    : interval_(interval)
    , action_(std::move(action))
    , next_(created + interval) {
    assert(interval.count() > 0);
}

std::shared_ptr<Timer> RunLoop::makeTimer(std::chrono::milliseconds interval, std::function<void()> action) {
    return std::make_shared<Timer>(uptime(), interval, std::move(action));
}

void RunLoop::addTimer(const std::shared_ptr<Timer>& timer, RunLoopMode mode) {
    if (!timer || !timer->valid_ || timer->scheduled_)
        return;
    timer->scheduled_ = true;
    timer->mode_ = mode;
    timer->order_ = scheduledCount_++;
    timers_.push_back(timer);
    rearm();
}

void RunLoop::performSoon(std::function<void()> work) {
    soon_.push_back(std::move(work));
    rearm();
}

void RunLoop::beginTracking() {
    ++tracking_;
    rearm();
}

void RunLoop::endTracking() {
    assert(tracking_ > 0);
    --tracking_;
    rearm();
}

void RunLoop::runPending() {
    // Timers first and deferred work last: what the timers defer still runs in this turn. Only what is due at
    // the start is fired, so that a timer shorter than its own action cannot keep the loop here.
    const Uptime now = uptime();
    while (const auto timer = nextDue(now)) {
        // Measured anew, since an action before this one may have taken time.
        const auto missed = (uptime() - timer->next_) / timer->interval_;
        timer->next_ += (missed + 1) * timer->interval_;
        timer->action_();
    }
    for (const auto& work : std::exchange(soon_, {}))
        work();
    std::erase_if(timers_, [](const auto& timer) { return !timer->valid_; });
    rearm();
}

bool RunLoop::mayFire(const Timer& timer) const {
    return timer.valid_ && (timer.mode_ == RunLoopMode::Common || tracking_ == 0);
}

std::shared_ptr<Timer> RunLoop::nextDue(Uptime now) const {
    std::shared_ptr<Timer> first;
    for (const auto& timer : timers_) {
        if (!mayFire(*timer) || timer->next_ > now)
            continue;
        if (!first || std::pair(timer->next_, timer->order_) < std::pair(first->next_, first->order_))
            first = timer;
    }
    return first;
}

void RunLoop::rearm() {
    std::optional<Uptime> earliest;
    if (!soon_.empty())
        earliest = uptime();
    for (const auto& timer : timers_)
        if (mayFire(*timer) && (!earliest || timer->next_ < *earliest))
            earliest = timer->next_;
    wakeAt(earliest);
}

} // namespace orvello
