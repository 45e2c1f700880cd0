#include "platform/Utf8.h"

#include <unicode/utf8.h>

namespace orvello {

std::optional<Utf8Character> firstCharacter(std::string_view text) {
    if (text.empty())
        return std::nullopt;
    std::size_t length = 0;
    UChar32 character = 0;
    U8_NEXT(text.data(), length, text.size(), character);
    if (character < 0)
        return std::nullopt;
    return Utf8Character{static_cast<char32_t>(character), length};
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const auto character = firstCharacter(text);
        if (!character)
            return false;
        text.remove_prefix(character->length);
    }
    return true;
}

} // namespace orvello
