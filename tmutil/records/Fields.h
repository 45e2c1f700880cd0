#pragma once

#include "platform/Date.h"
#include "platform/plist/Value.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvello::tmutil {

/// Texts and paths as fields of a property list. A path that a string element cannot hold, as it is not UTF-8
/// or has control characters, is kept as a data element.
plist::Value pathValue(const std::string& path);
plist::Array pathValues(const std::vector<std::string>& paths);

/// The text or path under a key; empty when there is none.
std::string textField(const plist::Dictionary& dictionary, std::string_view key);
/// The paths under a key; what is no path is left out.
std::vector<std::string> pathsField(const plist::Dictionary& dictionary, std::string_view key);

/// The date under a key, if there is one.
std::optional<Date> dateField(const plist::Dictionary& dictionary, std::string_view key);

} // namespace orvello::tmutil
