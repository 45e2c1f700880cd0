#include "app/ZRAppDelegate.h"
#include "platform/Alert.h"
#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/UserDefaults.h"
#include "platform/UserTask.h"
#include "platform/Workspace.h"
#include "settings/SettingsKeys.h"
#include "timemachine/BackupStatus.h"
#include "timemachine/DestinationInfo.h"
#include "timemachine/ToolRuns.h"

namespace orvello {

std::optional<StatusDictionary> ZRAppDelegate::BackupStatus() {
    if (!FoundScript)
        return std::nullopt;
    return readBackupStatus(runTool(ToolVerb::Status));
}

void ZRAppDelegate::runTimeMachineBackup() {
    if (!FoundScript) {
        askForManualStart();
        return;
    }
    if (BackupStatus()->Status != "Idle")
        return;
    const auto output = runTool(ToolVerb::StartBackup);
    platform_.log.line("startbackup returned: " + decodeText(output).value_or(""));
    recordBackupStart();
}

void ZRAppDelegate::askForManualStart() {
    // The minute's tick goes on while the alert is open and may ask again: one question at a time.
    if (manualStartAlertOpen)
        return;
    manualStartAlertOpen = true;
    const auto answer = platform_.alerts.runModal(
        {.message = "Please start Backup now",
         .informativeText =
             "Now is the time to start a Time Machine backup.\n\nTherefore you can click on the Time Machine "
             "Icon in "
             "your Menu Bar and then hit the \"Start Backup Now\" Button.\n\n\nIf you want this to be "
             "handled by "
             "Orvello, please go to Orvello -> Preferences -> About -> Install Helper Script\n",
         .defaultButton = "I started a Backup",
         .alternateButton = "I want to skip this Backup",
         .icon = AlertIcon::Application});
    manualStartAlertOpen = false;
    if (answer == AlertResponse::Default) {
        recordBackupStart();
    } else {
        resetMinutesUntilNextBackup();
        updateStatus();
    }
}

void ZRAppDelegate::recordBackupStart() {
    lastBackupDate = platform_.userDefaults.dateForKey(key::LastBackup);
    platform_.userDefaults.setObject(key::LastBackup, platform_.clock.now());
    resetMinutesUntilNextBackup();
    updateLastBackupDate();
    updateStatus();
}

void ZRAppDelegate::cancelTimeMachineBackup() {
    const auto status = BackupStatus();
    if (!status || status->Status != "Running")
        return;
    const auto output = runTool(ToolVerb::StopBackup);
    platform_.log.line("cancelbackup returned: " + decodeText(output).value_or(""));
    if (lastBackupDate)
        platform_.userDefaults.setObject(key::LastBackup, *lastBackupDate);
    else
        platform_.userDefaults.removeObject(key::LastBackup);
    updateLastBackupDate();
    updateStatus();
}

void ZRAppDelegate::RunTimeMachineClicked() {
    if (RunTimeMachineItem()->title() == cancelBackupTitle)
        cancelTimeMachineBackup();
    else
        runTimeMachineBackup();
}

void ZRAppDelegate::OpenTimeMachineClicked() {
    platform_.workspace.launchApplication("/Applications/Time Machine.app");
}

std::optional<plist::Array> ZRAppDelegate::getDestinationInfo() {
    if (!FoundScript)
        return std::nullopt;
    return readDestinationInfo(runTool(ToolVerb::DestinationInfo));
}

std::string ZRAppDelegate::runTool(ToolVerb verb) {
    return platform_.userTasks.run(toolRun(toolPath, verb));
}

} // namespace orvello
