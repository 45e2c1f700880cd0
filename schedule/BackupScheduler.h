#pragma once

#include "platform/Date.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The scheduler's rules: three sources that can make a backup due, a countdown of minutes, the user's idle
/// time and two fixed hours of the day. Everywhere here -1 minutes means none.
namespace orvello {

class Calendar;

/// Whether a run may start backups and advances the countdown (the tick of the minute), or only says what is
/// expected (after a change of the settings).
enum class Trigger { No, Yes };

/// The settings that the countdown and idleness are judged by, as stored; no value is checked for its range.
struct ScheduleSettings {
    std::int64_t minutesUntilNextBackup = -1; ///< the countdown; 0 means that the interval backup is due
    std::int64_t idleTime = -1;               ///< minutes of idleness required ("and") or sufficient ("or")
    std::string andOr = "and"; ///< compared exactly; any other word acts like "or" at an expired
                               ///< countdown and like "and" everywhere else
};

/// What the countdown and the idle time ask for.
struct DynamicDecision {
    bool startBackup = false;
    /// The countdown's new value, to be stored after the start: it replaces what the start's reset wrote.
    std::optional<std::int64_t> countdown;
    std::int64_t minutes = -1; ///< until the backup that the countdown or idleness starts
    bool onlyIfIdle = false;   ///< that backup comes only if the user stays idle
    bool operator==(const DynamicDecision&) const = default;
};

/// Judges countdown and idleness. `idleTime` is scaled as by scaledIdleTime; unknown (-1) counts as active.
DynamicDecision decideDynamic(const ScheduleSettings& settings, std::int64_t idleTime, Trigger trigger);

using DateText = std::function<std::string(Date)>;

/// What one fixed hour asks for.
struct FixedHourDecision {
    std::int64_t minutes = -1;
    bool startBackup = false;
    std::vector<std::string> logLines;
};

/// Judges a fixed hour of the day; its start is due exactly in the minute HH:00 of the user's clock. An hour
/// that the clock skips counts as the first minute behind the gap, on the next day too; an hour that it
/// repeats is honoured both times. An hour outside 0 to 23 is off. `name` ("Time1") begins the log line;
/// `timeText` renders hours and minutes without seconds.
FixedHourDecision decideFixedHour(std::string_view name, std::int64_t hour, Date now,
                                  const Calendar& calendar, const DateText& timeText, Trigger trigger);

/// What the run ends with.
struct NextBackup {
    std::optional<Date> date; ///< of the next automatic backup; none when none is expected
    std::string menuText;
    std::vector<std::string> logLines;
};

/// Combines the dynamic minutes with the minutes until the two fixed hours.
NextBackup decideNextBackup(const DynamicDecision& dynamic, std::int64_t untilTime1, std::int64_t untilTime2,
                            Date now, const DateText& dateText);

/// The smaller of two numbers of minutes, -1 counting as none.
std::int64_t minimumNotMinusOne(std::int64_t first, std::int64_t second);

/// Whole minutes from now until the target, rounded up; in the minute that begins with it 0 in the first
/// second, then 1.
std::int64_t calculateMinutesUntilTime(Date target, Date now);

/// The instant that many minutes from now; held within some 10,000 years.
Date calculateNextBackupDate(Date now, std::int64_t minutes);

} // namespace orvello
