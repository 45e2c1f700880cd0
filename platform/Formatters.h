#pragma once

#include "platform/Date.h"

#include <cstdint>
#include <memory>
#include <string>

namespace orvello {

/// Turns an instant into text in the user's locale and time zone.
class DateFormatter {
  public:
    virtual ~DateFormatter() = default;
    virtual std::string stringFromDate(Date date) const = 0;
};

/// Turns a count of bytes into text in the style of file sizes: decimal units, whole bytes and kilobytes, at
/// most one fraction digit for megabytes and two from gigabytes up; zero is a number.
class ByteCountFormatter {
  public:
    virtual ~ByteCountFormatter() = default;
    virtual std::string stringFromByteCount(std::int64_t bytes) const = 0;
};

/// Makes formatters of the user's current locale.
class FormatterFactory {
  public:
    virtual ~FormatterFactory() = default;
    /// Time of day, short style: hours and minutes, no seconds, no date.
    virtual std::unique_ptr<DateFormatter> makeTimeFormatter() const = 0;
    /// Medium date and short time; days near today are named instead of dated.
    virtual std::unique_ptr<DateFormatter> makeDateFormatter() const = 0;
    virtual std::unique_ptr<ByteCountFormatter> makeByteFormatter() const = 0;
};

} // namespace orvello
