#include "schedule/BackupScheduler.h"

#include "platform/Calendar.h"
#include "platform/Integer.h"

#include <fmt/format.h>

#include <algorithm>

namespace orvello {

namespace {

/// Adds the wait for idleness to the dynamic minutes: `remainder` minutes more and only if the user stays
/// idle.
void combineWithIdleness(DynamicDecision& decision, std::int64_t remainder) {
    if (decision.minutes == 0 || decision.minutes == -1) {
        decision.minutes = remainder;
        decision.onlyIfIdle = true;
        return;
    }
    decision.minutes = minimumNotMinusOne(decision.minutes, remainder);
    decision.onlyIfIdle = decision.minutes == remainder;
}

std::int64_t secondsUntil(Date target, Date now) {
    return std::chrono::duration_cast<std::chrono::seconds>(target - now).count();
}

/// The first instant of that hour that is not a minute or more ago; none for an hour outside 0 to 23.
std::optional<Date> nextInstantAtHour(std::int64_t hour, Date now, const Calendar& calendar) {
    // Yesterday's hour may have been skipped up to this minute, and the day after tomorrow comes next where
    // the calendar has no tomorrow.
    for (const int day : {-1, 0, 1, 2})
        for (const Date target : calendar.instantsAtHour(now, day, hour))
            if (secondsUntil(target, now) >= -59)
                return target;
    return std::nullopt;
}

} // namespace

DynamicDecision decideDynamic(const ScheduleSettings& settings, std::int64_t idleTime, Trigger trigger) {
    const bool triggered = trigger == Trigger::Yes;
    const auto countdown = settings.minutesUntilNextBackup;
    const auto idleMinutes = idleTime / 60;
    const auto remainder = wrappingSubtract(settings.idleTime, idleMinutes);
    const bool idleEnough = idleMinutes >= settings.idleTime;

    DynamicDecision decision;
    decision.minutes = countdown;
    if (countdown == 0) {
        if (settings.andOr == "and" && !idleEnough)
            combineWithIdleness(decision, remainder);
        else
            decision.startBackup = triggered;
        return decision;
    }

    const bool idlenessStarts = settings.andOr == "or" && settings.idleTime != -1;
    if (idlenessStarts && idleEnough) {
        decision.startBackup = triggered;
        if (!triggered)
            return decision;
    }
    if (countdown == -1) {
        if (idlenessStarts && !idleEnough)
            combineWithIdleness(decision, remainder);
        return decision;
    }
    if (triggered) {
        decision.minutes = wrappingSubtract(countdown, 1);
        decision.countdown = decision.minutes;
    }
    if (idlenessStarts && !idleEnough)
        combineWithIdleness(decision, remainder);
    return decision;
}

FixedHourDecision decideFixedHour(std::string_view name, std::int64_t hour, Date now,
                                  const Calendar& calendar, const DateText& timeText, Trigger trigger) {
    FixedHourDecision decision;
    const auto today = calendar.instantsAtHour(now, 0, hour);
    const auto next = nextInstantAtHour(hour, now, calendar);
    if (next)
        decision.minutes = calculateMinutesUntilTime(*next, now);
    if (today.empty() || !next)
        return decision;
    const bool due = *next <= now;
    decision.startBackup = due && trigger == Trigger::Yes;
    decision.logLines = {fmt::format("Delta minutes: {}", decision.minutes),
                         fmt::format("{}String: {}\tTimeCompareString: {}", name,
                                     timeText(due ? *next : today.front()), timeText(now))};
    return decision;
}

NextBackup decideNextBackup(const DynamicDecision& dynamic, std::int64_t untilTime1, std::int64_t untilTime2,
                            Date now, const DateText& dateText) {
    const auto fixed = minimumNotMinusOne(untilTime1, untilTime2);
    const auto minutes = minimumNotMinusOne(dynamic.minutes, fixed);

    NextBackup next;
    if (minutes == -1) {
        next.menuText = "Next Backup: Automatic Backup not Active";
    } else {
        next.date = calculateNextBackupDate(now, minutes);
        next.menuText = "Next Backup: " + (minutes == 0 ? "in less than one Minute" : dateText(*next.date));
        if (dynamic.onlyIfIdle && minutes != fixed)
            next.menuText += " (if Idle)";
    }
    next.logLines = {fmt::format("Fixed: {}\tDynamic: {}", fixed, dynamic.minutes),
                     "MenuString: " + next.menuText};
    return next;
}

std::int64_t minimumNotMinusOne(std::int64_t first, std::int64_t second) {
    if (first == -1)
        return second;
    if (second == -1)
        return first;
    return std::min(first, second);
}

std::int64_t calculateMinutesUntilTime(Date target, Date now) {
    const auto seconds = secondsUntil(target, now);
    return seconds / 60 + (seconds % 60 != 0 ? 1 : 0);
}

Date calculateNextBackupDate(Date now, std::int64_t minutes) {
    constexpr std::int64_t limit = std::int64_t{10'000} * 366 * 24 * 60;
    return now + std::chrono::minutes(std::clamp(minutes, -limit, limit));
}

} // namespace orvello
