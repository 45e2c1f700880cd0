#pragma once

#include "platform/plist/Value.h"

#include <optional>
#include <string_view>

namespace orvello::plist {

/// The values that the texts of an XML property list's elements stand for; none for a text that the element
/// does not allow. Numbers may have white space around them, dates may not.

/// Decimal, or hexadecimal after "0x", with an optional sign; within signed 64 bits.
std::optional<Value> integerFromText(std::string_view text);

/// A decimal number with optional fraction and exponent, or "nan", "inf" or "infinity", in any case, with an
/// optional sign. A number beyond the range of reals is none.
std::optional<Value> realFromText(std::string_view text);

/// YYYY-MM-DDTHH:MM:SSZ, in UTC; an existing day, no leap second.
std::optional<Value> dateFromText(std::string_view text);

} // namespace orvello::plist
