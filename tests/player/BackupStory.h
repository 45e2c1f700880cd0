#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace orvello::player {

using Seconds = std::chrono::duration<double>;

/// What is going on at one moment of a backup.
struct Moment {
    /// As the tool names it; empty when no backup runs.
    std::string phase;
    bool stopping = false;
    /// Part done, 0 to 1; -1 when unknown.
    double fraction = -1;
    /// While copying and after that.
    struct Progress {
        std::int64_t files = 0;
        std::int64_t totalFiles = 0;
        std::int64_t bytes = 0;
        std::int64_t totalBytes = 0;
        /// None at first, as no speed is known yet.
        std::optional<Seconds> remaining;
    };
    std::optional<Progress> progress;

    bool isRunning() const { return !phase.empty(); }
};

/// What a backup that takes `length` in all does when `elapsed` has passed since its start, and `sinceStop`
/// since somebody asked it to stop.
Moment momentOfBackup(Seconds length, Seconds elapsed, std::optional<Seconds> sinceStop);

} // namespace orvello::player
