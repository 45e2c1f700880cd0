#include "timemachine/DestinationInfo.h"

#include "platform/plist/PropertyList.h"

namespace orvello {

std::optional<plist::Array> readDestinationInfo(std::string_view output) {
    const auto root = plist::parse(output);
    const auto* dictionary = root ? root->as<plist::Dictionary>() : nullptr;
    const auto* destinations = dictionary ? plist::find(*dictionary, "Destinations") : nullptr;
    const auto* array = destinations ? destinations->as<plist::Array>() : nullptr;
    return array ? std::optional(*array) : std::nullopt;
}

} // namespace orvello
