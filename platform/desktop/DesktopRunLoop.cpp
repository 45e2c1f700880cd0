#include "platform/desktop/DesktopRunLoop.h"

#include <algorithm>
#include <ctime>

namespace orvello {

DesktopRunLoop::DesktopRunLoop() {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
        requested_.reset();
        runPending();
    });
}

Uptime DesktopRunLoop::uptime() const {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

void DesktopRunLoop::wakeAt(std::optional<Uptime> time) {
    if (time == requested_)
        return;
    requested_ = time;
    if (!time) {
        timer_.stop();
        return;
    }
    // Rounded up, so that the wake-up never comes before the date; held within what the timer can count.
    using std::chrono::milliseconds;
    const auto wait = std::chrono::ceil<milliseconds>(*time - uptime());
    timer_.start(std::clamp(wait, milliseconds(0), milliseconds(std::chrono::hours(24))));
}

} // namespace orvello
