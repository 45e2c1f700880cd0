#include "app/ZRAppDelegate.h"
#include "platform/Clock.h"
#include "platform/Formatters.h"
#include "platform/Log.h"
#include "platform/PreferencesInterface.h"
#include "platform/UserDefaults.h"
#include "schedule/BackupScheduler.h"
#include "schedule/IdleTime.h"
#include "settings/SettingsKeys.h"

namespace orvello {

void ZRAppDelegate::updateBackupSchedulerWithTrigger() {
    updateBackupScheduler(Trigger::Yes);
}

void ZRAppDelegate::updateBackupSchedulerNoTrigger() {
    updateBackupScheduler(Trigger::No);
}

void ZRAppDelegate::updateBackupScheduler(Trigger trigger) {
    auto& defaults = platform_.userDefaults;
    const auto log = [this](const std::vector<std::string>& lines) {
        for (const auto& line : lines)
            platform_.log.line(line);
    };

    idleTime = getIdleTime();
    const auto dynamic =
        decideDynamic({.minutesUntilNextBackup = defaults.integerForKey(key::MinutesUntilNextBackup),
                       .idleTime = defaults.integerForKey(key::IdleTime),
                       .andOr = defaults.stringForKey(key::AndOr)},
                      idleTime, trigger);
    if (dynamic.startBackup)
        runTimeMachineBackup();
    if (dynamic.countdown)
        defaults.setObject(key::MinutesUntilNextBackup, *dynamic.countdown);

    // A start may wait for the user's answer for hours, so the clock is read anew for each of what follows.
    const auto timeText = [this](Date date) { return timeFormatter->stringFromDate(date); };
    const auto untilFixedHour = [&](std::string_view name) {
        const auto decision = decideFixedHour(name, defaults.integerForKey(name), platform_.clock.now(),
                                              platform_.calendar, timeText, trigger);
        log(decision.logLines);
        if (decision.startBackup)
            runTimeMachineBackup();
        return decision.minutes;
    };
    const auto untilTime1 = untilFixedHour(key::Time1);
    const auto untilTime2 = untilFixedHour(key::Time2);

    const auto next = decideNextBackup(dynamic, untilTime1, untilTime2, platform_.clock.now(),
                                       [this](Date date) { return dateFormatter->stringFromDate(date); });
    if (next.date)
        nextBackupDate_ = next.date;
    nextBackupDateMenuString = next.menuText;
    preferences()->SettingsNextBackup.setStringValue(next.menuText);
    log(next.logLines);
}

std::int64_t ZRAppDelegate::getIdleTime() {
    return probeIdleTime(platform_.ioRegistry);
}

void ZRAppDelegate::resetMinutesUntilNextBackup() {
    if (const auto interval = platform_.userDefaults.objectForKey(key::BackupTimeInterval))
        platform_.userDefaults.setObject(key::MinutesUntilNextBackup, *interval);
}

} // namespace orvello
