#pragma once

#include "platform/Date.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orvello::plist {

class Value;
using Array = std::vector<Value>;
using Dictionary = std::map<std::string, Value, std::less<>>;

/// The bytes of a data element; a type of their own, so that they are never taken for a string.
struct Data {
    std::string bytes;
    bool operator==(const Data&) const = default;
};

/// A value of a property list. Strings are UTF-8.
class Value {
  public:
    using Variant = std::variant<bool, std::int64_t, double, std::string, Date, Data, Array, Dictionary>;

    Value(bool value)
        : variant_(value) {}
    Value(std::int64_t value)
        : variant_(value) {}
    Value(int value)
        : variant_(std::int64_t{value}) {}
    Value(double value)
        : variant_(value) {}
    Value(std::string value)
        : variant_(std::move(value)) {}
    Value(std::string_view value)
        : variant_(std::string(value)) {}
    Value(const char* value)
        : variant_(std::string(value)) {}
    Value(Date value)
        : variant_(value) {}
    Value(Data value)
        : variant_(std::move(value)) {}
    Value(Array value)
        : variant_(std::move(value)) {}
    Value(Dictionary value)
        : variant_(std::move(value)) {}

    /// The value as that type, or null when it is of another.
    template <class Type> const Type* as() const { return std::get_if<Type>(&variant_); }
    const Variant& variant() const { return variant_; }
    bool operator==(const Value& other) const = default;

  private:
    Variant variant_;
};

/// The entry of a key, or null.
const Value* find(const Dictionary& dictionary, std::string_view key);

/// A value read as an integer: a number its value, a real truncated toward zero and held within 64 bits (NaN
/// gives 0); true 1, false 0; a string the run of decimal digits at its start, after white space and an
/// optional sign; null and every other kind 0.
std::int64_t integerValue(const Value* value);

/// A value read as a real: as integerValue, a string giving the decimal number at its start, with optional
/// fraction and exponent, the separator always a point.
double doubleValue(const Value* value);

} // namespace orvello::plist
