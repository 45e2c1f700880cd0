#include "settings/SettingsKeys.h"
#include "statusmenu/StatusMenu.h"
#include "tests/fuzz/Input.h"
#include "timemachine/BackupStatus.h"

using namespace orvello;

/// Whatever the tool prints, a refresh leaves the entries in a state that belongs to one of the three
/// statuses.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto status = readBackupStatus(textOf(bytes, size));
    const bool running = status.Status == "Running";
    const bool stopping = status.Status == "Stopping";
    require(running || stopping || status.Status == "Idle");
    require(running || (!status.BackupPhase && !status.Percent && !status.Progress));

    const auto update = mapStatusMenu({.status = status,
                                       .nextBackup = "next",
                                       .lastBackup = neverDate(),
                                       .dateText = [](Date) { return "date"; },
                                       .byteText = [](std::int64_t count) { return std::to_string(count); }},
                                      {});
    require(update.enable == !stopping && update.state.backupEnabled == !stopping);
    require((update.state.backupTitle == cancelBackupTitle) == running);
    require((update.state.icons == IconPair::Busy) == (running || stopping));
    require(!update.state.lines[0].hidden);
    return 0;
}
