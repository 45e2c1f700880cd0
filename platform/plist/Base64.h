#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvello::plist {

/// The bytes in base64 (RFC 4648, section 4), without line ends.
std::string base64Text(std::string_view bytes);

/// The bytes that a base64 text stands for; the white space of XML may stand anywhere in it. None when the
/// text has another character or ends within a group; groups are padded with "=".
std::optional<std::string> base64Bytes(std::string_view text);

} // namespace orvello::plist
