#include "platform/headless/VirtualRunLoop.h"

#include <algorithm>
#include <cassert>

namespace orvello::headless {

Date VirtualRunLoop::now() const {
    return wallStart_ + std::chrono::floor<std::chrono::microseconds>(uptime_ - wallStartUptime_);
}

void VirtualRunLoop::advance(std::chrono::nanoseconds duration) {
    assert(duration.count() >= 0);
    const Uptime target = uptime_ + duration;
    while (!stopped_ && wake_ && *wake_ <= target) {
        uptime_ = std::max(uptime_, *wake_);
        wake_.reset();
        runPending();
    }
    uptime_ = std::max(uptime_, target);
}

void VirtualRunLoop::sleep(std::chrono::nanoseconds duration) {
    setWallClock(now() + std::chrono::floor<std::chrono::microseconds>(duration));
}

void VirtualRunLoop::setWallClock(Date date) {
    wallStart_ = date;
    wallStartUptime_ = uptime_;
}

} // namespace orvello::headless
