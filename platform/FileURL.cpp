#include "platform/FileURL.h"

#include <charconv>

namespace orvello {

std::optional<std::string> pathFromFileURL(std::string_view url) {
    for (const std::string_view prefix : {"file://localhost/", "file:///", "file:/"}) {
        if (!url.starts_with(prefix))
            continue;
        url.remove_prefix(prefix.size() - 1);
        if (url.starts_with("//"))
            return std::nullopt; // a host that is not this one
        std::string path;
        for (std::size_t i = 0; i < url.size(); ++i) {
            auto byte = static_cast<unsigned char>(url[i]);
            if (byte == '%') {
                const auto* digits = url.data() + i + 1;
                if (i + 2 >= url.size() || std::from_chars(digits, digits + 2, byte, 16).ptr != digits + 2)
                    return std::nullopt;
                i += 2;
            }
            if (byte == 0)
                return std::nullopt;
            path += static_cast<char>(byte);
        }
        return path;
    }
    return std::nullopt;
}

} // namespace orvello
