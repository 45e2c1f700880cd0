#include "platform/headless/Disk.h"

#include <fmt/format.h>

#include <utility>

namespace orvello::headless {

SettingsStorage::Content DiskSettings::read() {
    if (!disk_.readProblem.empty())
        return {Content::State::Unreadable, {}, disk_.readProblem};
    if (!disk_.settings)
        return {Content::State::Absent, {}, {}};
    return {Content::State::Present, *disk_.settings, {}};
}

std::string DiskSettings::replace(std::string_view bytes) {
    if (!disk_.writeProblem.empty())
        return disk_.writeProblem;
    disk_.settings = bytes;
    disk_.readProblem.clear();
    ++disk_.saveCount;
    return {};
}

std::optional<std::string> DiskSettings::setAside() {
    if (!disk_.writeProblem.empty())
        return std::nullopt;
    const auto newName = fmt::format("{}.unreadable-{}", name(), disk_.setAside.size() + 1);
    disk_.setAside.emplace(newName, std::exchange(disk_.settings, std::nullopt).value_or(""));
    disk_.readProblem.clear();
    return newName;
}

std::optional<std::string> DiskBundle::resource(std::string_view name, std::string_view type) const {
    const auto found = disk_.resources.find(fmt::format("{}.{}", name, type));
    return found == disk_.resources.end() ? std::nullopt : std::optional(found->second);
}

bool DiskFiles::setPosixPermissions(const std::string& path, unsigned permissions) {
    if (!fileExistsAtPath(path))
        return false;
    disk_.permissions.insert_or_assign(path, permissions);
    return true;
}

} // namespace orvello::headless
