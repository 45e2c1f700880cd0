#include "preferences/InfoPanel.h"

namespace orvello {

namespace {

std::string text(const plist::Dictionary& destination, std::string_view key) {
    const auto* value = plist::find(destination, key);
    const auto* string = value ? value->as<std::string>() : nullptr;
    return string ? *string : "-";
}

} // namespace

DestinationBoxUpdate describeDestinations(const std::optional<plist::Array>& destinations) {
    DestinationBoxUpdate update;
    if (!destinations || destinations->empty())
        return update;
    update.title = destinations->size() == 1 ? "Backup Destination Info" : "Last Backup Destination Info";
    for (const auto& element : *destinations) {
        const auto* destination = element.as<plist::Dictionary>();
        if (!destination || plist::integerValue(plist::find(*destination, "LastDestination")) != 1)
            continue;
        const auto kind = text(*destination, "Kind");
        update.destination = {.kind = kind,
                              .image = kind == "Network" ? "GenericFileServerIcon" : "External",
                              .name = text(*destination, "Name"),
                              .id = text(*destination, "ID"),
                              .url = text(*destination, "URL")};
    }
    return update;
}

} // namespace orvello
