#include "app/ZRAppDelegate.h"
#include "platform/UserDefaults.h"
#include "settings/SettingsKeys.h"

namespace orvello {

void ZRAppDelegate::SettingsAppDefaultsClicked() {
    const auto appDefaults = getAppDefaults();
    for (const auto name : {key::BackupTimeInterval, key::AndOr, key::IdleTime, key::Time1, key::Time2})
        platform_.userDefaults.setObject(name, appDefaults.find(name)->second);
    setSettingsWindow();
    resetMinutesUntilNextBackup();
    updateBackupSchedulerNoTrigger();
}

} // namespace orvello
