#include "app/ZRAppDelegate.h"
#include "platform/Formatters.h"
#include "platform/PreferencesInterface.h"
#include "platform/UserDefaults.h"
#include "preferences/InfoPanel.h"
#include "settings/SettingsKeys.h"

namespace orvello {

void ZRAppDelegate::updateInfo() {
    auto& panel = *preferences();
    const auto update = describeDestinations(getDestinationInfo());
    if (update.title)
        panel.InfoDestinationBox.setTitle(*update.title);
    if (update.destination) {
        panel.InfoVolumeType.setStringValue(update.destination->kind);
        panel.InfoVolumeImage.setImage(update.destination->image);
        panel.InfoVolumeName.setStringValue(update.destination->name);
        panel.InfoVolumeID.setStringValue(update.destination->id);
        panel.InfoVolumeURL.setStringValue(update.destination->url);
    }
    const auto lastBackup = platform_.userDefaults.dateForKey(key::LastBackup).value_or(neverDate());
    if (lastBackup != neverDate())
        panel.InfoLastBox.setTitle("Last Backup (" + dateFormatter->stringFromDate(lastBackup) + ")");
    panel.InfoLastFiles.setStringValue(std::to_string(getFilesCopiedLastBackup()));
    panel.InfoLastBytes.setStringValue(byteFormatter->stringFromByteCount(getBytesCopiedLastBackup()));
    panel.InfoTotalFiles.setStringValue(std::to_string(getFilesCopiedTotal()));
    panel.InfoTotalBytes.setStringValue(byteFormatter->stringFromByteCount(getBytesCopiedTotal()));
}

} // namespace orvello
