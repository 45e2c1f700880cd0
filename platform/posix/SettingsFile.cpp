#include "platform/posix/SettingsFile.h"

#include "platform/posix/Descriptor.h"
#include "platform/posix/UserFolders.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace orvello {

namespace {

namespace fs = std::filesystem;

/// The temporary files are named after the file itself, with this and six characters behind the name.
constexpr std::string_view temporaryMark = ".new-";

std::string reason(int error) {
    return std::generic_category().message(error);
}

/// The file that a path leads to, links followed as far as they go; the last one may lead to nothing yet.
fs::path followed(fs::path path) {
    constexpr int maximumLinks = 40; // as many as the system follows
    for (int i = 0; i < maximumLinks; ++i) {
        std::error_code error;
        const auto target = fs::read_symlink(path, error);
        if (error)
            break;
        path = path.parent_path() / target;
    }
    return path;
}

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// Makes the folder and those above it that are missing. Failures show when the folder is used.
void makeFolders(const fs::path& folder) {
    fs::path made;
    for (const auto& part : folder) {
        made /= part;
        ::mkdir(made.c_str(), 0700);
    }
}

/// Removes the temporary files of earlier runs. One that is being written is locked, and is left alone.
void removeStaleTemporaries(const fs::path& path) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(folderOf(path).c_str()), ::closedir);
    if (!folder)
        return;
    const std::string start = path.filename().string().append(temporaryMark);
    while (const dirent* entry = ::readdir(folder.get())) {
        if (!std::string_view(entry->d_name).starts_with(start))
            continue;
        const int directory = ::dirfd(folder.get());
        const Descriptor file(
            ::openat(directory, entry->d_name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (file && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0)
            ::unlinkat(directory, entry->d_name, 0);
    }
}

bool writeWhole(const Descriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(file.get(), bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return false;
        bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return true;
}

bool syncToDisk(const Descriptor& file) {
    int result = 0;
    do {
        result = ::fsync(file.get());
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

/// Reads to the end, or a byte more than the limit. False on an error.
bool readWhole(const Descriptor& file, std::string& bytes, std::size_t limit) {
    std::array<char, 16 * 1024> buffer{};
    while (bytes.size() <= limit) {
        const auto count =
            ::read(file.get(), buffer.data(), std::min(buffer.size(), limit + 1 - bytes.size()));
        if (count == 0)
            return true;
        if (count < 0 && errno != EINTR)
            return false;
        bytes.append(buffer.data(), count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace

std::string defaultSettingsPath() {
    const auto folder = userFolder("XDG_CONFIG_HOME", ".config");
    return folder.empty() ? folder : folder + "/org.orvello.Orvello.plist";
}

SettingsFile::Content SettingsFile::read() {
    const auto unreadable = [](std::string problem) {
        return Content{Content::State::Unreadable, {}, std::move(problem)};
    };
    // Non-blocking, so that a named pipe in the file's place cannot hold the program.
    const Descriptor file(::open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file)
        return errno == ENOENT || errno == ENOTDIR ? Content() : unreadable(reason(errno));
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        return unreadable(reason(errno));
    if (!S_ISREG(status.st_mode))
        return unreadable(S_ISDIR(status.st_mode) ? "it is a folder" : "it is no regular file");
    Content content{Content::State::Present, {}, {}};
    if (!readWhole(file, content.bytes, sizeLimit))
        return unreadable(reason(errno));
    if (content.bytes.size() > sizeLimit)
        return unreadable(fmt::format("it is larger than {} bytes", sizeLimit));
    return content;
}

std::string SettingsFile::replace(std::string_view bytes) {
    if (path_.empty())
        return "there is no home folder";
    const auto path = followed(path_);
    makeFolders(folderOf(path));
    if (!std::exchange(cleaned_, true))
        removeStaleTemporaries(path);

    auto temporary = path.string().append(temporaryMark).append("XXXXXX");
    Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC)); // mode 0600
    if (!file)
        return reason(errno);
    ::flock(file.get(), LOCK_EX | LOCK_NB); // see removeStaleTemporaries
    if (!writeWhole(file, bytes) || !syncToDisk(file) || !file.close() ||
        ::rename(temporary.c_str(), path.c_str()) != 0) {
        const int error = errno;
        ::unlink(temporary.c_str());
        return reason(error);
    }
    // The new content is in place; whether the rename is on the disk already is up to the file system, if it
    // cannot be told.
    if (const Descriptor folder(::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)); folder)
        syncToDisk(folder);
    return {};
}

std::optional<std::string> SettingsFile::setAside() {
    const auto path = followed(path_);
    const auto start =
        fmt::format("{}.unreadable-{:%Y%m%d-%H%M%S}", path.string(), fmt::gmtime(std::time(nullptr)));
    constexpr int maximumTries = 100;
    for (int i = 1; i <= maximumTries; ++i) {
        const auto newName = i == 1 ? start : fmt::format("{}-{}", start, i);
        int result = ::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, newName.c_str(), RENAME_NOREPLACE);
        // Not every file system can refuse to replace.
        if (result != 0 && errno == EINVAL && ::access(newName.c_str(), F_OK) != 0)
            result = ::rename(path.c_str(), newName.c_str());
        if (result == 0)
            return newName;
        if (errno != EEXIST)
            break;
    }
    return std::nullopt;
}

} // namespace orvello
