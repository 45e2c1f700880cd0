#include "platform/icu/TimeZone.h"

#include <unicode/basictz.h>
#include <unicode/tztrans.h>

#include <utility>

namespace orvello {

namespace {

using std::chrono::milliseconds;

UDate icuDate(Date date) {
    return static_cast<UDate>(std::chrono::floor<milliseconds>(date).time_since_epoch().count());
}

Date dateFromICU(UDate date) {
    return Date(milliseconds(static_cast<std::int64_t>(date)));
}

} // namespace

struct NamedTimeZone::Zone {
    std::unique_ptr<icu::TimeZone> icu;
};

NamedTimeZone::NamedTimeZone(const std::string& name)
    : zone_(std::make_unique<Zone>()) {
    setName(name);
}

NamedTimeZone::~NamedTimeZone() = default;

void NamedTimeZone::setName(const std::string& name) {
    zone_->icu.reset(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
    periods_ = {};
}

std::chrono::seconds NamedTimeZone::offsetAt(Date date) const {
    for (const auto& period : periods_)
        if (date >= period.from && date < period.to)
            return period.offset;
    auto& period = periods_.at(std::exchange(oldest_, 1 - oldest_));
    const UDate instant = icuDate(date);
    UErrorCode status = U_ZERO_ERROR;
    int32_t standard = 0;
    int32_t daylightSaving = 0;
    zone_->icu->getOffset(instant, false, standard, daylightSaving, status);
    period = {Date::min(), Date::max(),
              std::chrono::duration_cast<std::chrono::seconds>(milliseconds(standard + daylightSaving))};

    // Every zone that ICU makes from a name can tell its transitions.
    const auto* basic = dynamic_cast<const icu::BasicTimeZone*>(zone_->icu.get());
    icu::TimeZoneTransition transition;
    if (!basic)
        period.to = period.from;
    if (basic && basic->getPreviousTransition(instant, true, transition))
        period.from = dateFromICU(transition.getTime());
    if (basic && basic->getNextTransition(instant, false, transition))
        period.to = dateFromICU(transition.getTime());
    return period.offset;
}

} // namespace orvello
