#include "platform/Log.h"

#include "platform/Utf8.h"

#include <fmt/format.h>

#include <iterator>

namespace orvello {

namespace {

bool isControl(char32_t code) {
    return (code < 0x20 && code != '\t') || (code >= 0x7F && code <= 0x9F);
}

/// The line and paragraph separators, and the characters of Unicode's property Bidi_Control.
bool changesLayout(char32_t code) {
    return (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0x061C ||
           code == 0x200E || code == 0x200F;
}

} // namespace

void Log::line(std::string_view text) {
    write(escapeForLog(text));
}

std::string escapeForLog(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    const auto out = std::back_inserter(escaped);
    while (!text.empty()) {
        const auto character = firstCharacter(text);
        const std::size_t length = character ? character->length : 1;
        if (!character)
            fmt::format_to(out, "\\x{:02X}", static_cast<unsigned char>(text.front()));
        else if (character->code == '\n')
            escaped += "\\n";
        else if (character->code == '\r')
            escaped += "\\r";
        else if (!isControl(character->code) && !changesLayout(character->code))
            escaped += text.substr(0, length);
        else if (character->code < 0x80)
            fmt::format_to(out, "\\x{:02X}", static_cast<unsigned>(character->code));
        else
            fmt::format_to(out, "\\u{{{:04X}}}", static_cast<unsigned>(character->code));
        text.remove_prefix(length);
    }
    return escaped;
}

} // namespace orvello
