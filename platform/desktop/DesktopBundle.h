#pragma once

#include "platform/Bundle.h"

namespace orvello {

/// The resources that are linked into the program: ":/TimeInterval.plist" is the one named TimeInterval of
/// type plist.
class DesktopBundle : public Bundle {
  public:
    std::optional<std::string> resource(std::string_view name, std::string_view type) const override;
};

} // namespace orvello
