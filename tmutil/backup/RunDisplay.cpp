#include "tmutil/backup/RunDisplay.h"

#include "tmutil/backup/RunState.h"
#include "tmutil/records/Fields.h"

#include <chrono>

namespace orvello::tmutil {

void RunDisplay::setDestination(const ChosenDestination& chosen) {
    destinationId_ = chosen.destination.id;
    mountPoint_ = chosen.folder;
}

void RunDisplay::showPhase(const std::string& phase) {
    if (phase != phase_)
        phaseSince_ = std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    phase_ = phase;
    show();
}

void RunDisplay::take(const CopyStatus& status) {
    progress_.take(status);
    if (progress_.allRead())
        showPhase("Finishing");
    else
        showPhase(progress_.copying() ? "Copying" : "Starting");
}

void RunDisplay::take(const CopySummary& summary) {
    progress_.take(summary);
    showPhase("Finishing");
}

void RunDisplay::show() const {
    const bool copies = phase_ == "Copying" || phase_ == "Finishing";
    plist::Dictionary state{
        {"BackupPhase", phase_},
        {"DateOfStateChange", phaseSince_},
        {"Percent", copies ? progress_.percent() : -1.0},
        {"Stopping", stop_.requested()},
    };
    // What has been copied is still worth telling while old backups are dropped.
    if (copies || phase_ == "ThinningPostBackup")
        state.emplace("Progress", progress_.dictionary());
    if (!destinationId_.empty())
        state.emplace("DestinationID", destinationId_);
    if (!mountPoint_.empty())
        state.emplace("DestinationMountPoint", pathValue(mountPoint_));
    writeRunState(folders_, state);
}

} // namespace orvello::tmutil
