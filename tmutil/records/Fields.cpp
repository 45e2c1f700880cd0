#include "tmutil/records/Fields.h"

#include "platform/Utf8.h"

namespace orvello::tmutil {

namespace {

std::string textOf(const plist::Value* value) {
    if (value == nullptr)
        return {};
    if (const auto* text = value->as<std::string>())
        return *text;
    const auto* data = value->as<plist::Data>();
    return data != nullptr ? data->bytes : std::string();
}

/// Whether a string element holds the text as it is: UTF-8 without the characters that XML forbids.
bool fitsString(std::string_view text) {
    while (!text.empty()) {
        const auto character = firstCharacter(text);
        if (!character)
            return false;
        const auto code = character->code;
        const bool isSpace = code == '\t' || code == '\n' || code == '\r';
        if ((code < 0x20 && !isSpace) || code == 0xFFFE || code == 0xFFFF)
            return false;
        text.remove_prefix(character->length);
    }
    return true;
}

} // namespace

plist::Value pathValue(const std::string& path) {
    return fitsString(path) ? plist::Value(path) : plist::Value(plist::Data{path});
}

plist::Array pathValues(const std::vector<std::string>& paths) {
    plist::Array values;
    for (const auto& path : paths)
        values.push_back(pathValue(path));
    return values;
}

std::string textField(const plist::Dictionary& dictionary, std::string_view key) {
    return textOf(plist::find(dictionary, key));
}

std::vector<std::string> pathsField(const plist::Dictionary& dictionary, std::string_view key) {
    std::vector<std::string> paths;
    const auto* value = plist::find(dictionary, key);
    if (const auto* array = value ? value->as<plist::Array>() : nullptr)
        for (const auto& element : *array)
            if (auto path = textOf(&element); !path.empty())
                paths.push_back(std::move(path));
    return paths;
}

std::optional<Date> dateField(const plist::Dictionary& dictionary, std::string_view key) {
    const auto* value = plist::find(dictionary, key);
    const auto* date = value ? value->as<Date>() : nullptr;
    return date ? std::optional(*date) : std::nullopt;
}

} // namespace orvello::tmutil
