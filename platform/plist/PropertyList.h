#pragma once

#include "platform/plist/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvello::plist {

/// Elements nested deeper than this, the outermost counted, are no property list.
inline constexpr int maximumDepth = 128;

/// Reads a property list in its XML form, UTF-8. None for anything else, whatever is wrong with it: not
/// well-formed, another encoding, declarations of entities or anything else in the document type, an unknown
/// element, a value that its element does not allow, a key without a value, integers beyond signed 64 bits,
/// nesting beyond maximumDepth. Attributes, comments and processing instructions mean nothing. Of a key that
/// stands twice the last value counts. Takes time and memory linear in the input.
std::optional<Value> parse(std::string_view bytes);

/// The XML form of a value, with one element a line and a final line end; parse gives the same value back,
/// but for what the form cannot hold: bytes in strings that are not UTF-8 and characters that XML forbids are
/// left out, dates lose the fraction of their second and are held within the years 0 to 9999.
std::string serialize(const Value& value);

} // namespace orvello::plist
