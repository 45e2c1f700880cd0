#pragma once

#include "platform/Formatters.h"

#include <unicode/smpdtfmt.h>

#include <array>
#include <memory>
#include <string>

namespace orvello {

class Clock;
class TimeZone;

/// Time of day, short style. Empty for a locale whose data cannot be loaded.
class IcuTimeFormatter : public DateFormatter {
  public:
    IcuTimeFormatter(const std::string& locale, const TimeZone& zone);
    std::string stringFromDate(Date date) const override;

  private:
    std::unique_ptr<icu::DateFormat> format_;
    const TimeZone& zone_;
};

/// Medium date and short time, where the date gives way to the name that the locale has for a day near the
/// clock's: "yesterday" in every language, "the day before yesterday" in some. This is the text of ICU's
/// relative medium dates, which however know no clock but the computer's.
class IcuRelativeDateFormatter : public DateFormatter {
  public:
    IcuRelativeDateFormatter(const std::string& locale, const TimeZone& zone, const Clock& clock);
    std::string stringFromDate(Date date) const override;

  private:
    /// Two days before the clock's to two days after it.
    static constexpr int reach = 2;

    /// Patterns by day, empty where the day has no name.
    std::array<icu::UnicodeString, 2 * reach + 1> named_;
    icu::UnicodeString dated_;
    std::unique_ptr<icu::SimpleDateFormat> format_;
    mutable const icu::UnicodeString* applied_ = nullptr; ///< the pattern that format_ has
    const TimeZone& zone_;
    const Clock& clock_;
};

} // namespace orvello
