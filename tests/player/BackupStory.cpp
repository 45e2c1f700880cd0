#include "tests/player/BackupStory.h"

#include <algorithm>
#include <array>

namespace orvello::player {

namespace {

struct Phase {
    const char* name;
    double until; ///< Part of the whole length.
    /// What is told of the copying.
    enum class Copy { Nothing, Progress, Result } copy = Copy::Nothing;
};
constexpr std::array phases = {
    Phase{"Starting", 0.07},
    Phase{"MountingBackupVol", 0.14},
    Phase{"Copying", 0.8, Phase::Copy::Progress},
    Phase{"Finishing", 0.9, Phase::Copy::Result},
    Phase{"ThinningPostBackup", 1.0, Phase::Copy::Result},
};

constexpr std::int64_t totalFiles = 18'432;
constexpr std::int64_t totalBytes = 7'516'192'768;
constexpr Seconds longestStop{3};

Moment::Progress copied(double fraction, Seconds copyLength) {
    Moment::Progress progress;
    progress.totalFiles = totalFiles;
    progress.totalBytes = totalBytes;
    progress.files = static_cast<std::int64_t>(fraction * static_cast<double>(totalFiles));
    progress.bytes = static_cast<std::int64_t>(fraction * static_cast<double>(totalBytes));
    if (fraction > 0.05) {
        progress.remaining = (1 - fraction) * copyLength;
    }
    return progress;
}

} // namespace

Moment momentOfBackup(Seconds length, Seconds elapsed, std::optional<Seconds> sinceStop) {
    Moment moment;
    if (sinceStop) {
        moment.stopping = *sinceStop < std::min(longestStop, length / 4);
        moment.phase = moment.stopping ? "Stopping" : "";
        return moment;
    }
    const double part = elapsed / length;
    double begin = 0;
    for (const Phase& phase : phases) {
        if (part < phase.until) {
            moment.phase = phase.name;
            if (phase.copy != Phase::Copy::Nothing) {
                const bool ended = phase.copy == Phase::Copy::Result;
                moment.fraction = ended ? 1 : (part - begin) / (phase.until - begin);
                moment.progress = copied(moment.fraction, (phase.until - begin) * length);
            }
            break;
        }
        begin = phase.until;
    }
    return moment;
}

} // namespace orvello::player
