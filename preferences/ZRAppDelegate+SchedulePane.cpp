#include "app/ZRAppDelegate.h"
#include "platform/Bundle.h"
#include "platform/Calendar.h"
#include "platform/Clock.h"
#include "platform/Formatters.h"
#include "platform/Log.h"
#include "platform/PreferencesInterface.h"
#include "platform/UserDefaults.h"
#include "platform/plist/PropertyList.h"
#include "preferences/SchedulePane.h"
#include "settings/SettingsKeys.h"

namespace orvello {

namespace {

void addItems(PopUpButton& button, std::vector<PopUpButton::Item> items) {
    for (auto& item : items)
        button.addItem(std::move(item.title), item.tag);
}

} // namespace

void ZRAppDelegate::populateSettingsWindow() {
    const auto list = plist::parse(platform_.bundle.resource("TimeInterval", "plist").value_or(""));
    const auto* intervals = list ? list->as<plist::Array>() : nullptr;
    addItems(preferences()->SettingsBackupTimeInterval,
             intervalItems(intervals ? *intervals : plist::Array{}));
    addItems(preferences()->SettingsIdleTime, idleTimeItems());
    const auto hourText = [this](int hour) {
        const auto instants = platform_.calendar.instantsAtHour(platform_.clock.now(), 0, hour);
        return instants.empty() ? std::string() : timeFormatter->stringFromDate(instants.front());
    };
    for (auto* button : {&preferences()->SettingsTime1, &preferences()->SettingsTime2})
        addItems(*button, fixedHourItems(hourText));
    setSettingsWindow();
    updateInfo();
}

void ZRAppDelegate::setSettingsWindow() {
    const auto& defaults = platform_.userDefaults;
    auto& pane = *preferences();
    pane.SettingsBackupTimeInterval.selectItemWithTag(defaults.integerForKey(key::BackupTimeInterval));
    pane.SettingsIdleTime.selectItemWithTag(defaults.integerForKey(key::IdleTime));
    pane.SettingsTime1.selectItemWithTag(defaults.integerForKey(key::Time1));
    pane.SettingsTime2.selectItemWithTag(defaults.integerForKey(key::Time2));
    updateLastBackupDate();
    pane.SettingsAutostart.setOn(defaults.boolForKey(key::AutoStart));
    const auto andOr = defaults.stringForKey(key::AndOr);
    platform_.log.line("AndOr: " + andOr);
    pane.SettingsAndOr.selectItemWithTag(andOr == "and" ? 0 : 1);
}

void ZRAppDelegate::updateLastBackupDate() {
    const auto lastBackup = platform_.userDefaults.dateForKey(key::LastBackup).value_or(neverDate());
    preferences()->SettingsLastBackup.setStringValue(
        lastBackup == neverDate() ? "-" : dateFormatter->stringFromDate(lastBackup));
}

void ZRAppDelegate::SettingsBackupTimeIntervalChanged() {
    storeSelectedTag(preferences()->SettingsBackupTimeInterval, key::BackupTimeInterval);
    resetMinutesUntilNextBackup();
    updateBackupSchedulerNoTrigger();
}

void ZRAppDelegate::SettingsIdleTimeChanged() {
    storeSelectedTag(preferences()->SettingsIdleTime, key::IdleTime);
    updateBackupSchedulerNoTrigger();
}

void ZRAppDelegate::SettingsTime1Changed() {
    storeSelectedTag(preferences()->SettingsTime1, key::Time1);
    updateBackupSchedulerNoTrigger();
}

void ZRAppDelegate::SettingsTime2Changed() {
    storeSelectedTag(preferences()->SettingsTime2, key::Time2);
    updateBackupSchedulerNoTrigger();
}

void ZRAppDelegate::SettingsAndOrChanged() {
    platform_.userDefaults.setObject(key::AndOr,
                                     preferences()->SettingsAndOr.selectedTag() == 0 ? "and" : "or");
    updateBackupSchedulerNoTrigger();
}

void ZRAppDelegate::SettingsBackupNowClicked() {
    runTimeMachineBackup();
}

void ZRAppDelegate::storeSelectedTag(const PopUpButton& button, std::string_view settingsKey) {
    if (const auto tag = button.selectedTag())
        platform_.userDefaults.setObject(settingsKey, *tag);
}

} // namespace orvello
