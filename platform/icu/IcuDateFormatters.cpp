#include "platform/icu/IcuDateFormatters.h"

#include "platform/Clock.h"
#include "platform/icu/TimeZone.h"

#include <unicode/reldatefmt.h>
#include <unicode/udat.h>

#include <utility>

namespace orvello {

namespace {

using icu::DateFormat;
using icu::UnicodeString;

/// The format as one for local dates, which stand as if they were in UTC.
template <class Format> std::unique_ptr<Format> forLocalDates(DateFormat* made) {
    std::unique_ptr<Format> format(dynamic_cast<Format*>(made));
    if (format)
        format->setTimeZone(*icu::TimeZone::getGMT());
    else
        delete made;
    return format;
}

std::string text(const DateFormat& format, LocalDate local) {
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(local).time_since_epoch().count();
    UnicodeString formatted;
    format.format(static_cast<UDate>(milliseconds), formatted);
    std::string utf8;
    return formatted.toUTF8String(utf8);
}

/// The text as a part of a date pattern that stands for itself.
UnicodeString quoted(UnicodeString text) {
    text.findAndReplace(u"'", u"''");
    return u"'" + text + u"'";
}

/// The pattern of medium date and short time between which ICU exchanges the date for a name; its other
/// formats join date and time differently in some languages.
UnicodeString relativeMediumDatePattern(const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUDateFormatPointer format(
        udat_open(UDAT_SHORT, UDAT_MEDIUM_RELATIVE, locale.c_str(), nullptr, 0, nullptr, 0, &status));
    std::array<UChar, 256> pattern{};
    const auto length = udat_toPattern(format.getAlias(), false, pattern.data(), pattern.size(), &status);
    return U_SUCCESS(status) ? UnicodeString(pattern.data(), length) : UnicodeString();
}

} // namespace

IcuTimeFormatter::IcuTimeFormatter(const std::string& locale, const TimeZone& zone)
    : format_(forLocalDates<DateFormat>(
          DateFormat::createTimeInstance(DateFormat::kShort, icu::Locale(locale.c_str()))))
    , zone_(zone) {}

std::string IcuTimeFormatter::stringFromDate(Date date) const {
    return format_ ? text(*format_, localDate(zone_, date)) : std::string();
}

IcuRelativeDateFormatter::IcuRelativeDateFormatter(const std::string& locale, const TimeZone& zone,
                                                   const Clock& clock)
    : dated_(relativeMediumDatePattern(locale))
    , format_(forLocalDates<icu::SimpleDateFormat>(DateFormat::createDateTimeInstance(
          DateFormat::kMedium, DateFormat::kShort, icu::Locale(locale.c_str()))))
    , zone_(zone)
    , clock_(clock) {
    const auto date = forLocalDates<icu::SimpleDateFormat>(
        DateFormat::createDateInstance(DateFormat::kMedium, icu::Locale(locale.c_str())));
    UErrorCode status = U_ZERO_ERROR;
    const icu::RelativeDateTimeFormatter names(icu::Locale(locale.c_str()), nullptr, UDAT_STYLE_LONG,
                                               UDISPCTX_CAPITALIZATION_NONE, status);
    if (!date || U_FAILURE(status))
        return;
    UnicodeString datePattern;
    date->toPattern(datePattern);
    constexpr std::array days = {UDAT_DIRECTION_LAST_2, UDAT_DIRECTION_LAST, UDAT_DIRECTION_THIS,
                                 UDAT_DIRECTION_NEXT, UDAT_DIRECTION_NEXT_2};
    static_assert(days.size() == std::tuple_size_v<decltype(named_)>);
    for (std::size_t i = 0; i < days.size(); ++i) {
        UErrorCode unnamed = U_ZERO_ERROR;
        UnicodeString name;
        names.format(days.at(i), UDAT_ABSOLUTE_DAY, name, unnamed);
        if (U_SUCCESS(unnamed) && !name.isEmpty() && dated_.indexOf(datePattern) >= 0)
            (named_.at(i) = dated_).findAndReplace(datePattern, quoted(name));
    }
}

std::string IcuRelativeDateFormatter::stringFromDate(Date date) const {
    if (!format_ || dated_.isEmpty())
        return {};
    using std::chrono::days;
    const auto local = localDate(zone_, date);
    const auto today = std::chrono::floor<days>(localDate(zone_, clock_.now()));
    const auto day = (std::chrono::floor<days>(local) - today).count();
    const auto* pattern = &dated_;
    if (day >= -reach && day <= reach && !named_.at(static_cast<std::size_t>(day + reach)).isEmpty())
        pattern = &named_.at(static_cast<std::size_t>(day + reach));
    if (std::exchange(applied_, pattern) != pattern)
        format_->applyPattern(*pattern);
    return text(*format_, local);
}

} // namespace orvello
