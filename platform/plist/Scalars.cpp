#include "platform/plist/Scalars.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <chrono>
#include <limits>
#include <system_error>

namespace orvello::plist {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view space = " \t\r\n";
    const auto start = text.find_first_not_of(space);
    return start == std::string_view::npos ? ""
                                           : text.substr(start, text.find_last_not_of(space) - start + 1);
}

/// Takes the sign off the text's start; whether it was a minus.
bool takeSign(std::string_view& text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    return negative;
}

template <class Number, class... Format>
bool readWhole(std::string_view text, Number& number, Format... format) {
    const auto end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, format...);
    return result.ec == std::errc() && result.ptr == end;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
    return std::equal(
        text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
        [](char left, char right) { return std::tolower(static_cast<unsigned char>(left)) == right; });
}

} // namespace

std::optional<Value> integerFromText(std::string_view text) {
    text = trimmed(text);
    const bool negative = takeSign(text);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    std::uint64_t magnitude = 0;
    if (!readWhole(text.substr(hexadecimal ? 2 : 0), magnitude, hexadecimal ? 16 : 10))
        return std::nullopt;
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (magnitude > largest + (negative ? 1 : 0))
        return std::nullopt;
    return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
}

std::optional<Value> realFromText(std::string_view text) {
    text = trimmed(text);
    const bool negative = takeSign(text);
    double magnitude = 0;
    if (equalsIgnoringCase(text, "nan"))
        magnitude = std::numeric_limits<double>::quiet_NaN();
    else if (equalsIgnoringCase(text, "inf") || equalsIgnoringCase(text, "infinity"))
        magnitude = std::numeric_limits<double>::infinity();
    else if (text.find_first_not_of("0123456789.eE+-") != std::string_view::npos || text.starts_with('-') ||
             !readWhole(text, magnitude, std::chars_format::general))
        return std::nullopt;
    return negative ? -magnitude : magnitude;
}

std::optional<Value> dateFromText(std::string_view text) {
    constexpr std::string_view form = "dddd-dd-ddTdd:dd:ddZ";
    const auto matches = [](char c, char wanted) {
        return wanted == 'd' ? c >= '0' && c <= '9' : c == wanted;
    };
    if (!std::equal(text.begin(), text.end(), form.begin(), form.end(), matches))
        return std::nullopt;
    const auto number = [&](std::size_t position, std::size_t length) {
        unsigned value = 0;
        readWhole(text.substr(position, length), value);
        return value;
    };
    using namespace std::chrono;
    const year_month_day day(year(static_cast<int>(number(0, 4))), month(number(5, 2)),
                             std::chrono::day(number(8, 2)));
    const unsigned hour = number(11, 2);
    const unsigned minute = number(14, 2);
    const unsigned second = number(17, 2);
    if (!day.ok() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return Date(sys_days(day) + hours(hour) + minutes(minute) + seconds(second));
}

} // namespace orvello::plist
