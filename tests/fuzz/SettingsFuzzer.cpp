#include "platform/headless/Machine.h"
#include "platform/plist/PropertyList.h"
#include "schedule/BackupScheduler.h"
#include "settings/SettingsKeys.h"
#include "tests/fuzz/Input.h"

using namespace orvello;

namespace {

/// One run of the scheduler's rules with what the settings say.
void decide(headless::Machine& machine, const UserDefaults& defaults) {
    const auto platform = machine.platform();
    const auto dateText = [](Date) { return std::string("date"); };
    const auto dynamic =
        decideDynamic({.minutesUntilNextBackup = defaults.integerForKey(key::MinutesUntilNextBackup),
                       .idleTime = defaults.integerForKey(key::IdleTime),
                       .andOr = defaults.stringForKey(key::AndOr)},
                      0, Trigger::Yes);
    const auto until = [&](std::string_view name) {
        const auto minutes = decideFixedHour(name, defaults.integerForKey(name), machine.now(),
                                             platform.calendar, dateText, Trigger::Yes)
                                 .minutes;
        require(minutes >= -1 && minutes <= 25 * 60);
        return minutes;
    };
    const auto time1 = until(key::Time1);
    require(!decideNextBackup(dynamic, time1, until(key::Time2), machine.now(), dateText).menuText.empty());
}

} // namespace

/// Whatever stands in the settings file, the program has settings that it can decide by, and saves them so
/// that the next start reads what this one had. What is no property list stays, set aside.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto disk = std::make_shared<headless::Disk>();
    disk->settings = textOf(bytes, size);
    std::optional<Date> lastBackup;
    {
        headless::Machine machine({.disk = disk});
        auto& defaults = machine.platform().userDefaults;
        defaults.registerDefaults(getAppDefaults());
        const auto value = plist::parse(textOf(bytes, size));
        require(disk->setAside.empty() == (size == 0 || (value && value->as<plist::Dictionary>())));
        decide(machine, defaults);
        defaults.boolForKey(key::FirstStart);
        lastBackup = defaults.dateForKey(key::LastBackup);
        require(lastBackup.has_value());
        machine.perform([&] { defaults.setObject(key::Time1, 14); });
    }
    headless::Machine next({.disk = disk});
    auto& defaults = next.platform().userDefaults;
    defaults.registerDefaults(getAppDefaults());
    require(defaults.integerForKey(key::Time1) == 14);
    require(defaults.dateForKey(key::LastBackup) == lastBackup);
    return 0;
}
