#include "settings/SettingsKeys.h"

namespace orvello {

Date neverDate() {
    using namespace std::chrono;
    return sys_days{1987y / March / 24} + 10h + 45min + 32s - 6h;
}

plist::Dictionary getAppDefaults() {
    // In minutes. The pop-up of the preferences shows it only if resources/TimeInterval.plist has it.
    constexpr int interval = 60;
    plist::Dictionary defaults;
    const auto set = [&](std::string_view name, plist::Value value) {
        defaults.insert_or_assign(std::string(name), std::move(value));
    };
    set(key::BackupTimeInterval, interval);
    set(key::IdleTime, -1);
    set(key::Time1, -1);
    set(key::Time2, -1);
    set(key::AndOr, "and");
    set(key::MinutesUntilNextBackup, interval);
    set(key::LastBackup, neverDate());
    set(key::AutoStart, false);
    set(key::FirstStart, true);
    set(key::ScriptRemind, true);
    for (const auto name : {key::FilesThisBackup, key::FilesLastBackup, key::FilesTotal, key::BytesThisBackup,
                            key::BytesLastBackup, key::BytesTotal})
        set(name, 0);
    return defaults;
}

} // namespace orvello
