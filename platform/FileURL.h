#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvello {

/// The absolute path that a file URL ("file:///usr/bin/tool", RFC 8089) names, percent-decoded; the host may
/// be empty or "localhost". None for any other text and for a path with a NUL in it.
std::optional<std::string> pathFromFileURL(std::string_view url);

} // namespace orvello
