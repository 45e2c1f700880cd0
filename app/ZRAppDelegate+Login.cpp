#include "app/ZRAppDelegate.h"
#include "platform/Alert.h"
#include "platform/Log.h"
#include "platform/LoginItem.h"
#include "platform/PreferencesInterface.h"
#include "platform/UserDefaults.h"
#include "settings/SettingsKeys.h"

namespace orvello {

void ZRAppDelegate::setAutoStart(bool requested) {
    auto& defaults = platform_.userDefaults;
    defaults.setObject(key::AutoStart, requested);
    platform_.log.line(requested ? "Setting Autostart: ON" : "Setting Autostart: OFF");
    if (!platform_.loginItem.setEnabled(requested)) {
        platform_.alerts.runModal(
            {.message = "An error ocurred",
             .informativeText = requested ? "Couldn't add Helper App to launch at login item list."
                                          : "Couldn't remove Helper App from launch at login item list."});
        defaults.setObject(key::AutoStart, !requested);
    }
    MenuStartAtLogin()->setChecked(defaults.boolForKey(key::AutoStart));
    preferences()->SettingsAutostart.setOn(defaults.boolForKey(key::AutoStart));
}

void ZRAppDelegate::SettingsAutoStartChanged() {
    setAutoStart(preferences()->SettingsAutostart.isOn());
}

void ZRAppDelegate::MenuStartAtLoginClicked() {
    setAutoStart(!MenuStartAtLogin()->isChecked());
}

void ZRAppDelegate::askForStartAtLogin() {
    const auto answer = platform_.alerts.runModal(
        {.message = "Start at Login?",
         .informativeText =
             "Orvello it not set up to start at every Login.\n\nWould you like to change that?\n(You can "
             "always change this behavior in the Preferences of Orvello)",
         .defaultButton = "Start at Login",
         .alternateButton = "Do NOT start at Login",
         .icon = AlertIcon::Application});
    if (answer == AlertResponse::Default)
        setAutoStart(true);
}

} // namespace orvello
