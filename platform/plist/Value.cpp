#include "platform/plist/Value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace orvello::plist {

namespace {

using Integer = std::numeric_limits<std::int64_t>;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The text without the white space and, for from_chars, the plus sign at its start.
std::string_view numberPart(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    return text;
}

std::int64_t leadingInteger(std::string_view text) {
    text = numberPart(text);
    std::int64_t number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc::result_out_of_range)
        return text.front() == '-' ? Integer::min() : Integer::max();
    return number;
}

/// Whether a decimal number that is beyond the range of reals is too large for it, and not too small.
bool isTooLarge(std::string_view number) {
    const std::size_t exponentMark = std::min(number.find_first_of("eE"), number.size());
    const std::string_view mantissa = number.substr(0, exponentMark);
    const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
    const auto firstDigit = static_cast<std::int64_t>(mantissa.find_first_of("123456789"));
    const std::string_view exponent = number.substr(std::min(exponentMark + 1, number.size()));
    return leadingInteger(exponent) > firstDigit - point;
}

double leadingReal(std::string_view text) {
    text = numberPart(text);
    const bool negative = text.starts_with('-');
    const auto digits = text.substr(negative ? 1 : 0);
    // from_chars would take "inf" and "nan" for numbers too.
    if (digits.empty() || !(isDigit(digits[0]) || digits[0] == '.'))
        return 0;
    double number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error == std::errc::result_out_of_range)
        number = isTooLarge({digits.data(), end}) ? std::numeric_limits<double>::infinity() : 0;
    return negative ? -number : number;
}

std::int64_t truncated(double number) {
    if (std::isnan(number))
        return 0;
    // The limits as reals: -2^63 is one, 2^63 is the first real beyond.
    if (number < -0x1p63)
        return Integer::min();
    return number >= 0x1p63 ? Integer::max() : static_cast<std::int64_t>(number);
}

} // namespace

const Value* find(const Dictionary& dictionary, std::string_view key) {
    const auto entry = dictionary.find(key);
    return entry == dictionary.end() ? nullptr : &entry->second;
}

std::int64_t integerValue(const Value* value) {
    if (value == nullptr)
        return 0;
    if (const auto* integer = value->as<std::int64_t>())
        return *integer;
    if (const auto* real = value->as<double>())
        return truncated(*real);
    if (const auto* boolean = value->as<bool>())
        return *boolean ? 1 : 0;
    if (const auto* string = value->as<std::string>())
        return leadingInteger(*string);
    return 0;
}

double doubleValue(const Value* value) {
    if (value == nullptr)
        return 0;
    if (const auto* real = value->as<double>())
        return *real;
    if (const auto* string = value->as<std::string>())
        return leadingReal(*string);
    return static_cast<double>(integerValue(value));
}

} // namespace orvello::plist
