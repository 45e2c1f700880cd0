#include "platform/plist/Value.h"
#include "preferences/InfoPanel.h"
#include "tests/fuzz/Input.h"
#include "timemachine/DestinationInfo.h"

#include <algorithm>

using namespace orvello;

/// Whatever the tool prints, a destination that is shown is one of its list, and each of its texts is the
/// tool's own or "-".
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto list = readDestinationInfo(textOf(bytes, size));
    const auto update = describeDestinations(list);
    require(update.title.has_value() == (list && !list->empty()));
    if (!update.destination)
        return 0;
    const auto& shown = *update.destination;
    require((shown.image == "GenericFileServerIcon") == (shown.kind == "Network"));
    const auto isShown = [&](const plist::Value& element) {
        const auto* destination = element.as<plist::Dictionary>();
        const auto tells = [&](std::string_view key, const std::string& text) {
            const auto* value = plist::find(*destination, key);
            return value && value->as<std::string>() ? *value == plist::Value(text) : text == "-";
        };
        return destination && tells("Kind", shown.kind) && tells("Name", shown.name) &&
               tells("ID", shown.id) && tells("URL", shown.url);
    };
    require(std::ranges::any_of(*list, isShown));
    return 0;
}
