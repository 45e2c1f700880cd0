#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvello {

/// The program's own resources.
class Bundle {
  public:
    virtual ~Bundle() = default;
    /// The bytes of the resource of that name and type ("TimeInterval", "plist"); none when there is none.
    virtual std::optional<std::string> resource(std::string_view name, std::string_view type) const = 0;
};

} // namespace orvello
