#include "tmutil/verbs/BraceForm.h"

#include "platform/Log.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <type_traits>

namespace orvello::tmutil {

namespace {

std::string quoted(const std::string& text) {
    const auto isPlain = [](unsigned char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
               c == '_' || c == '/';
    };
    if (!text.empty() && std::all_of(text.begin(), text.end(), isPlain))
        return text;
    std::string escaped;
    for (const char character : text) {
        if (character == '"' || character == '\\')
            escaped += '\\';
        escaped += character;
    }
    return '"' + escapeForLog(escaped) + '"';
}

std::string form(const plist::Value& value, const std::string& indent);

std::string form(const plist::Dictionary& dictionary, const std::string& indent) {
    std::string text = "{\n";
    for (const auto& [key, value] : dictionary)
        text += fmt::format("{}    {} = {};\n", indent, quoted(key), form(value, indent + "    "));
    return text + indent + '}';
}

std::string form(const plist::Value& value, const std::string& indent) {
    return std::visit(
        [&indent](const auto& content) -> std::string {
            using Type = std::decay_t<decltype(content)>;
            if constexpr (std::is_same_v<Type, plist::Dictionary>) {
                return form(content, indent);
            } else if constexpr (std::is_same_v<Type, plist::Array>) {
                std::string text = "(\n";
                for (const auto& element : content)
                    text += fmt::format("{}    {},\n", indent, form(element, indent + "    "));
                return text + indent + ')';
            } else if constexpr (std::is_same_v<Type, bool>) {
                return content ? "1" : "0";
            } else if constexpr (std::is_same_v<Type, Date>) {
                const auto seconds = std::chrono::system_clock::to_time_t(content);
                return quoted(fmt::format("{:%Y-%m-%d %H:%M:%S} +0000", fmt::gmtime(seconds)));
            } else if constexpr (std::is_same_v<Type, plist::Data>) {
                return quoted(content.bytes);
            } else if constexpr (std::is_same_v<Type, std::string>) {
                return quoted(content);
            } else {
                return quoted(fmt::format("{}", content));
            }
        },
        value.variant());
}

} // namespace

std::string braceForm(const plist::Dictionary& dictionary) {
    return form(dictionary, {}) + '\n';
}

} // namespace orvello::tmutil
