#include "timemachine/BackupStatus.h"

#include "platform/plist/PropertyList.h"

namespace orvello {

namespace {

/// The root dictionary of the output, or none.
std::optional<plist::Dictionary> parseDictionary(std::string_view output) {
    const auto root = plist::parse(output);
    const auto* dictionary = root ? root->as<plist::Dictionary>() : nullptr;
    return dictionary ? std::optional(*dictionary) : std::nullopt;
}

std::string withDatesOfStateChange(std::string_view output) {
    constexpr std::string_view key = "<key>DateOfStateChange</key>";
    std::string text;
    for (;;) {
        const auto found = output.find(key);
        if (found == std::string_view::npos)
            return text.append(output);
        text.append(output.substr(0, found + key.size())).append("<integer>0</integer>");
        output.remove_prefix(found + key.size());
    }
}

std::optional<plist::Value> entry(const plist::Dictionary& dictionary, std::string_view key) {
    const auto* value = plist::find(dictionary, key);
    return value ? std::optional(*value) : std::nullopt;
}

} // namespace

StatusDictionary readBackupStatus(std::string_view output) {
    auto answer = parseDictionary(output);
    if (!answer || !plist::find(*answer, "Running"))
        answer = parseDictionary(withDatesOfStateChange(output));
    if (!answer)
        return {.Status = "Idle"};
    if (plist::integerValue(plist::find(*answer, "Stopping")) == 1)
        return {.Status = "Stopping"};
    if (plist::integerValue(plist::find(*answer, "Running")) != 1)
        return {.Status = "Idle"};

    StatusDictionary status{.Status = "Running"};
    if ((status.BackupPhase = entry(*answer, "BackupPhase")) && (status.Percent = entry(*answer, "Percent")))
        status.Progress = entry(*answer, "Progress");
    return status;
}

} // namespace orvello
