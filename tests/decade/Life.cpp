#include "tests/decade/Life.h"

#include "platform/PreferencesInterface.h"
#include "settings/SettingsKeys.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace orvello {

namespace {

using namespace std::chrono;
using namespace std::chrono_literals;

plist::Dictionary settingsOf(const Schedule& schedule) {
    return {{std::string(key::BackupTimeInterval), schedule.interval},
            {std::string(key::MinutesUntilNextBackup), schedule.interval},
            {std::string(key::AndOr), schedule.andOr},
            {std::string(key::IdleTime), schedule.idleTime},
            {std::string(key::Time1), schedule.time1},
            {std::string(key::Time2), schedule.time2}};
}

microseconds idleTimeAt(Date date) {
    const auto sinceTen = date - floor<days>(date - 22h) - 22h;
    return sinceTen < 10h ? sinceTen : 0h;
}

} // namespace

Life::Life(const ZoneHistory& zone, Schedule schedule, Date from, Date to)
    : zone_(zone)
    , schedule_(std::move(schedule))
    , program_({.start = from, .timeZone = zone.name, .disk = Program::diskWith(settingsOf(schedule_))}) {
    // The last tick looks ahead to the hours of the days behind it, and the first may stand in a due minute.
    for (const auto hour : {schedule_.time1, schedule_.time2})
        due_.merge(zone.instantsOfHour(hour, from - 1min, to + 72h));
    program_.tool.length = 1min;
    program_.machine.tools().runs().setCapacity(0);
    program_.machine.log().lines().setCapacity(0);
}

void Life::tickUntil(Date date) {
    while (now() < date && !testing::Test::HasFailure()) {
        program_.machine.setIdleTime(idleTimeAt(now() + 1min) - 1min);
        program_.tool.starts.clear();
        program_.pass(1min);
        check();
    }
}

void Life::sleepBefore(Date date) {
    if (const auto wait = ceil<minutes>(date - now()); wait > 1min)
        program_.machine.sleepMachine(wait - 1min);
}

Life::Expectation Life::expect() {
    const bool hourDue = nextDue() <= now();
    // The registry tells the idle time in units of 2^30 ns, of which 60 are taken for a minute.
    const bool idleEnough = idleTimeAt(now()) >= nanoseconds(schedule_.idleTime * 60 * (1LL << 30));

    ++sinceReset_;
    const bool intervalDue = schedule_.interval >= 0 && sinceReset_ > schedule_.interval &&
                             (schedule_.andOr == "or" || idleEnough);
    const bool idleDue = schedule_.andOr == "or" && schedule_.idleTime >= 0 && idleEnough;
    // A start for idleness alone leaves the countdown as it is, also when the hour comes in the same tick.
    const bool resets = intervalDue || (hourDue && !idleDue);
    const auto countdownBefore = schedule_.interval - sinceReset_;
    if (resets)
        sinceReset_ = 0;

    Expectation expected{.starts = intervalDue || idleDue || hourDue ? 1U : 0U};
    if (schedule_.interval >= 0)
        expected.countdown = std::max<std::int64_t>(schedule_.interval - sinceReset_, 0);
    if (schedule_.idleTime == -1) {
        expected.minutes = minutesUntilDue();
        if (schedule_.interval >= 0)
            expected.minutes = std::min(*expected.minutes, std::max<std::int64_t>(countdownBefore, 0));
    }
    return expected;
}

/// Rounded up; 1 in the minute itself, but for its first second.
std::int64_t Life::minutesUntilDue() const {
    const auto distance = nextDue() - now();
    return distance < 0s ? 1 : ceil<minutes>(distance).count();
}

void Life::check() {
    const auto expected = expect();
    EXPECT_EQ(program_.tool.starts.size(), expected.starts) << here();
    EXPECT_EQ(program_.integer(key::MinutesUntilNextBackup), expected.countdown) << here();
    const auto next = program_.controller().nextBackupDate();
    ASSERT_TRUE(next) << here();
    EXPECT_GE(*next, now()) << here();
    if (expected.minutes) {
        EXPECT_EQ(*next, now() + minutes(*expected.minutes)) << here();
    } else {
        EXPECT_LE(*next, now() + minutes(minutesUntilDue())) << here();
    }
    const auto text = program_.machine.preferencesWindow().controls()->SettingsNextBackup.stringValue();
    EXPECT_TRUE(text.starts_with(expectedText(*next))) << text << " " << here();
}

std::string Life::expectedText(Date next) const {
    if (next == now())
        return "Next Backup: in less than one Minute";
    const auto local = next + zone_.offsetAt(next);
    const auto today = floor<days>(now() + zone_.offsetAt(now()));
    const auto ahead = floor<days>(local) - today;
    if (ahead > days(1))
        return "Next Backup: ";
    // The clock may be set back from behind midnight.
    const auto* const day = ahead < days(0) ? "yesterday" : ahead == days(0) ? "today" : "tomorrow";
    const auto time = floor<minutes>(local - floor<days>(local));
    return fmt::format("Next Backup: {}, {:02}:{:02}", day, time / 1h, time % 1h / 1min);
}

std::string Life::here() const {
    return fmt::format("in {} at {:%F %T} UTC, interval {}, idle {} {}, hours {} and {}", zone_.name,
                       fmt::gmtime(floor<seconds>(now()).time_since_epoch().count()), schedule_.interval,
                       schedule_.andOr, schedule_.idleTime, schedule_.time1, schedule_.time2);
}

} // namespace orvello
