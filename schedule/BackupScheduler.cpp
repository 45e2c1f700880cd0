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
    decision.minutes = calculateMinutesUntilTime(hour, now, calendar);
    if (today.empty() || decision.minutes == -1)
        return decision;
    const auto hourText = timeText(today.front());
    const auto nowText = timeText(now);
    decision.startBackup = trigger == Trigger::Yes && nowText == hourText;
    decision.logLines = {fmt::format("Delta minutes: {}", decision.minutes),
                         fmt::format("{}String: {}\tTimeCompareString: {}", name, hourText, nowText)};
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

std::int64_t calculateMinutesUntilTime(std::int64_t hour, Date now, const Calendar& calendar) {
    using std::chrono::seconds;
    for (const int day : {0, 1, 2}) { // the day after tomorrow only where the calendar has no tomorrow
        for (const Date target : calendar.instantsAtHour(now, day, hour)) {
            const auto distance = std::chrono::duration_cast<seconds>(target - now).count();
            if (distance < -59)
                continue; // that time was a minute or more ago
            return distance / 60 + (distance % 60 != 0 ? 1 : 0);
        }
    }
    return -1;
}

Date calculateNextBackupDate(Date now, std::int64_t minutes) {
    constexpr std::int64_t limit = std::int64_t{10'000} * 366 * 24 * 60;
    return now + std::chrono::minutes(std::clamp(minutes, -limit, limit));
}

} // namespace orvello
