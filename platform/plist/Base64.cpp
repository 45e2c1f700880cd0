#include "platform/plist/Base64.h"

#include <cstdint>

namespace orvello::plist {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string base64Text(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (; !bytes.empty(); bytes.remove_prefix(bytes.size() < 3 ? bytes.size() : 3)) {
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            text += i <= bytes.size() ? alphabet[group >> (18 - 6 * i) & 0x3FU] : '=';
    }
    return text;
}

std::optional<std::string> base64Bytes(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t group = 0;
    int digits = 0;
    int padding = 0;
    for (const char c : text) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r')
            continue;
        const auto value = alphabet.find(c);
        // Padding ends the last group: nothing but more of it may follow.
        if (c == '=' && digits >= 2)
            ++padding;
        else if (value == std::string_view::npos || padding > 0)
            return std::nullopt;
        group = group << 6 | (c == '=' ? 0U : static_cast<std::uint32_t>(value));
        if (++digits < 4)
            continue;
        for (int shift = 16; shift >= 8 * padding; shift -= 8)
            bytes += static_cast<char>(group >> shift & 0xFFU);
        group = 0;
        digits = 0;
    }
    return digits == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace orvello::plist
