#include "tmutil/records/PropertyListFile.h"

#include "platform/plist/PropertyList.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/SettingsFile.h"
#include "tmutil/Folders.h"

#include <fmt/format.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>

namespace orvello::tmutil {

Result<plist::Dictionary> PropertyListFile::read() const {
    using State = SettingsStorage::Content::State;
    const auto content = SettingsFile(path_).read();
    if (content.state == State::Unreadable)
        return Problem{fmt::format("{} cannot be read: {}.", path_, content.problem)};
    if (content.state == State::Absent || content.bytes.empty())
        return plist::Dictionary();
    const auto root = plist::parse(content.bytes);
    if (const auto* dictionary = root ? root->as<plist::Dictionary>() : nullptr)
        return *dictionary;
    return Problem{fmt::format("{} is no property list. Mend it or move it away.", path_)};
}

Failure PropertyListFile::replace(const plist::Dictionary& content) const {
    if (const auto problem = SettingsFile(path_).replace(plist::serialize(content)); !problem.empty())
        return Problem{fmt::format("{} cannot be written: {}.", path_, problem)};
    return std::nullopt;
}

Failure PropertyListFile::replaceOrBeginAnew(const plist::Dictionary& content) const {
    if (!read())
        SettingsFile(path_).setAside();
    return replace(content);
}

Failure PropertyListFile::change(const std::function<Failure(plist::Dictionary&)>& edit) const {
    makeFolder(std::filesystem::path(path_).parent_path());
    // The lock is a file of its own, as the property list is another file after each change.
    const Descriptor lock(::open((path_ + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    while (lock && ::flock(lock.get(), LOCK_EX) != 0 && errno == EINTR) {
    }
    auto content = read();
    if (!content)
        return content.problem();
    const auto before = *content;
    if (auto problem = edit(*content))
        return problem;
    return *content == before ? std::nullopt : replace(*content);
}

} // namespace orvello::tmutil
