#include "tests/decade/ZoneHistory.h"

#include <unicode/basictz.h>
#include <unicode/strenum.h>
#include <unicode/tzrule.h>
#include <unicode/tztrans.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace orvello {

namespace {

using namespace std::chrono;

UDate icuDate(Date date) {
    return static_cast<UDate>(duration_cast<milliseconds>(date.time_since_epoch()).count());
}

seconds offsetOf(const icu::TimeZoneRule& rule) {
    return duration_cast<seconds>(milliseconds(rule.getRawOffset() + rule.getDSTSavings()));
}

/// Adds the instants of [from, to) at which a clock so far ahead of UTC shows hour:00.
void addInstants(std::set<Date>& instants, std::int64_t hour, Date from, Date to, seconds offset) {
    for (auto day = floor<days>(from + offset); day + hours(hour) - offset < to; day += days(1))
        if (const Date instant = day + hours(hour) - offset; instant >= from)
            instants.insert(instant);
}

bool skips(const ClockChange& change, std::int64_t hour) {
    for (auto time = ceil<hours>(change.at + change.before); time < change.at + change.after;
         time += hours(1))
        if (time - floor<days>(time) == hours(hour))
            return true;
    return false;
}

ZoneHistory historyOf(const std::string& name, Date from, Date to) {
    ZoneHistory history{.name = name};
    const std::unique_ptr<icu::TimeZone> made(
        icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
    const auto& zone = dynamic_cast<const icu::BasicTimeZone&>(*made);
    UErrorCode status = U_ZERO_ERROR;
    int32_t standard = 0;
    int32_t daylightSaving = 0;
    zone.getOffset(icuDate(from), false, standard, daylightSaving, status);
    history.firstOffset = duration_cast<seconds>(milliseconds(standard + daylightSaving));
    icu::TimeZoneTransition transition;
    for (UDate date = icuDate(from); zone.getNextTransition(date, false, transition);) {
        date = transition.getTime();
        const ClockChange change{Date(milliseconds(static_cast<std::int64_t>(date))),
                                 offsetOf(*transition.getFrom()), offsetOf(*transition.getTo())};
        if (change.at >= to)
            break;
        if (change.before != change.after)
            history.changes.push_back(change);
    }
    return history;
}

} // namespace

seconds ZoneHistory::offsetAt(Date date) const {
    const auto next = std::ranges::upper_bound(changes, date, {}, &ClockChange::at);
    return next == changes.begin() ? firstOffset : std::prev(next)->after;
}

std::set<Date> ZoneHistory::instantsOfHour(std::int64_t hour, Date from, Date to) const {
    std::set<Date> instants;
    if (hour < 0)
        return instants;
    Date since = from;
    auto offset = offsetAt(from);
    for (const auto& change : changes) {
        if (change.at <= from || change.at >= to)
            continue;
        addInstants(instants, hour, since, change.at, offset);
        if (skips(change, hour))
            instants.insert(change.at);
        since = change.at;
        offset = change.after;
    }
    addInstants(instants, hour, since, to, offset);
    return instants;
}

std::vector<ZoneHistory> distinctHistories(Date from, Date to) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::StringEnumeration> ids(icu::TimeZone::createEnumeration(status));
    std::set<std::pair<seconds, std::vector<ClockChange>>> seen;
    std::vector<ZoneHistory> histories;
    while (const auto* name = ids->next(nullptr, status))
        if (auto history = historyOf(name, from, to);
            seen.emplace(history.firstOffset, history.changes).second)
            histories.push_back(std::move(history));
    return histories;
}

} // namespace orvello
