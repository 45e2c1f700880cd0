#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace orvello {

struct Utf8Character {
    char32_t code = 0;
    std::size_t length = 0; ///< in bytes, 1 to 4
};

/// The character that the text begins with; none when the text is empty or begins with bytes that are not
/// UTF-8 (RFC 3629: overlong forms, surrogates and codes beyond U+10FFFF are none).
std::optional<Utf8Character> firstCharacter(std::string_view text);

/// Whether the whole text is UTF-8.
bool isUtf8(std::string_view text);

} // namespace orvello
