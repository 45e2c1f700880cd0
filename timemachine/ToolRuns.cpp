#include "timemachine/ToolRuns.h"

#include "platform/UserTask.h"
#include "platform/Utf8.h"

namespace orvello {

UserTask toolRun(const std::string& path, ToolVerb verb) {
    using namespace std::chrono_literals;
    constexpr std::size_t outputLimit = 8 * 1024 * 1024;
    switch (verb) {
    case ToolVerb::Status:
        return {path, {"status", "-X"}, false, 3s, outputLimit};
    case ToolVerb::DestinationInfo:
        return {path, {"destinationinfo", "-X"}, false, 10s, outputLimit};
    case ToolVerb::StartBackup:
        return {path, {"startbackup"}, true, 20s, outputLimit, true};
    case ToolVerb::StopBackup:
        return {path, {"stopbackup"}, true, 20s, outputLimit, true};
    }
    return {};
}

std::optional<std::string> decodeText(std::string_view output) {
    return isUtf8(output) ? std::optional<std::string>(output) : std::nullopt;
}

} // namespace orvello
