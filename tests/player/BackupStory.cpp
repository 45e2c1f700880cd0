#include "tests/player/BackupStory.h"

#include <algorithm>

namespace orvello::player {

namespace {

struct Phase {
    const char* name;
    double until;                                                       ///< Part of the whole length.
    enum class Copy { Nothing, Progress, Result } copy = Copy::Nothing; ///< What is told of the copying.
};
constexpr Phase phases[] = {
    {"Starting", 0.07},
    {"MountingBackupVol", 0.14},
    {"Copying", 0.8, Phase::Copy::Progress},
    {"Finishing", 0.9, Phase::Copy::Result},
    {"ThinningPostBackup", 1.0, Phase::Copy::Result},
};

constexpr std::int64_t totalFiles = 18'432;
constexpr std::int64_t totalBytes = 7'516'192'768;
constexpr Seconds longestStop{3};
constexpr auto destinationId = "7C1D5E92-0A4B-4F36-8E57-21B9D30F64AC";
constexpr auto mountPoint = "/Volumes/Harbour";

std::int64_t partOf(std::int64_t total, double fraction) {
    return static_cast<std::int64_t>(fraction * static_cast<double>(total));
}

/// The time remaining is told once the speed can be known.
plist::Dictionary progress(double fraction, Seconds copyLength) {
    plist::Dictionary copied{{"files", partOf(totalFiles, fraction)},
                             {"totalFiles", totalFiles},
                             {"bytes", partOf(totalBytes, fraction)},
                             {"totalBytes", totalBytes}};
    if (fraction > 0.05)
        copied.emplace("TimeRemaining", static_cast<std::int64_t>(((1 - fraction) * copyLength).count()));
    return copied;
}

plist::Dictionary runningStatus(const char* phase, bool stopping) {
    auto status = idleStatus();
    status.insert_or_assign("Running", true);
    status.insert(
        {{"BackupPhase", phase},
         {"DateOfStateChange", std::chrono::floor<Date::duration>(std::chrono::system_clock::now())},
         {"DestinationID", destinationId},
         {"Stopping", stopping}});
    return status;
}

} // namespace

plist::Dictionary idleStatus() {
    return {{"ClientID", "player"}, {"Percent", -1.0}, {"Running", false}};
}

plist::Dictionary statusOfBackup(Seconds length, Seconds elapsed, std::optional<Seconds> sinceStop) {
    if (sinceStop)
        return *sinceStop < std::min(longestStop, length / 4) ? runningStatus("Stopping", true)
                                                              : idleStatus();
    const double part = elapsed / length;
    double begin = 0;
    for (const Phase& phase : phases) {
        if (part >= phase.until) {
            begin = phase.until;
            continue;
        }
        auto status = runningStatus(phase.name, false);
        if (phase.copy != Phase::Copy::Nothing) {
            const bool ended = phase.copy == Phase::Copy::Result;
            const double fraction = ended ? 1 : (part - begin) / (phase.until - begin);
            status.insert_or_assign("Percent", fraction);
            status.emplace("DestinationMountPoint", mountPoint);
            status.emplace("Progress", progress(fraction, (phase.until - begin) * length));
        }
        return status;
    }
    return idleStatus();
}

plist::Dictionary destinations() {
    const plist::Dictionary harbour{{"Kind", "Local"},
                                    {"ID", destinationId},
                                    {"Name", "Harbour"},
                                    {"LastDestination", 1},
                                    {"MountPoint", mountPoint}};
    return {{"Destinations", plist::Array{harbour}}};
}

} // namespace orvello::player
