#pragma once

#include "platform/plist/Value.h"

#include <optional>
#include <string_view>

namespace orvello {

/// Reads the output of the tool's verb destinationinfo, an XML property list: the array under "Destinations"
/// in the tool's order, possibly empty. None when the output cannot be read or has no such array.
std::optional<plist::Array> readDestinationInfo(std::string_view output);

} // namespace orvello
