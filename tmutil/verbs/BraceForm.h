#pragma once

#include "platform/plist/Value.h"

#include <string>

namespace orvello::tmutil {

/// The dictionary in the older text form of property lists, for people to read: braces around "key = value;"
/// lines, and quotes around what is not just letters, digits and "._/". Ends with a line end.
std::string braceForm(const plist::Dictionary& dictionary);

} // namespace orvello::tmutil
